#include "sim_runner.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace quorble::test {
namespace {

// The text between the quotes of a transcript line, unescaped.
std::string Unquote(const std::string& rest) {
  const auto open = rest.find('"');
  if (open == std::string::npos) return {};
  std::string text;
  for (size_t i = open + 1; i < rest.size() && rest[i] != '"'; ++i) {
    if (rest[i] != '\\') {
      text += rest[i];
    } else if (rest[i + 1] == 'x') {
      text += static_cast<char>(std::stoi(rest.substr(i + 2, 2), nullptr, 16));
      i += 3;
    } else {
      text += rest[++i];
    }
  }
  return text;
}

std::string Capture(const std::string& command, int& status) {
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("can't run " + command);
  std::array<char, 4096> buffer;
  for (size_t n; (n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) output.append(buffer.data(), n);
  const int raw = pclose(pipe);
  status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  return output;
}

}  // namespace

std::vector<std::string> SimRun::Spoken() const {
  std::vector<std::string> spoken;
  for (const auto& line : lines) {
    if (line.event == "speak" && line.rest != "purge") spoken.push_back(Unquote(line.rest));
  }
  return spoken;
}

std::vector<std::string> SimRun::Events() const {
  std::vector<std::string> events;
  for (const auto& line : lines) events.push_back(line.text);
  return events;
}

int SimRun::Find(const std::string& part, int from) const {
  for (int i = std::max(from, 0); i < static_cast<int>(lines.size()); ++i) {
    if (lines[i].text.find(part) != std::string::npos) return i;
  }
  return -1;
}

std::string SimRun::Dump() const {
  std::ostringstream out;
  out << "status " << status << "\n";
  for (const auto& line : lines) out << line.time << " " << line.text << "\n";
  return out.str() + stderrText;
}

SimWorld::SimWorld() {
  std::string pattern = (fs::temp_directory_path() / "quorble-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  root_ = pattern;
  fs::create_directories(root_ / "docs");
  fs::create_directories(root_ / "cwd");
}

SimWorld::~SimWorld() {
  std::error_code ec;
  fs::remove_all(root_, ec);
}

SimRun SimWorld::Run(const std::string& script, bool withDocs) const {
  Write(root_ / "script", script);
  std::string command = std::string(QUORBLE_SIM) + " --samples '" + QUORBLE_SAMPLES + "' --cwd '" +
                        Cwd().string() + "'";
  if (withDocs) command += " --docs '" + Docs().string() + "'";
  command += " '" + (root_ / "script").string() + "' 2>'" + (root_ / "stderr").string() + "'";
  SimRun run;
  std::istringstream transcript(Capture(command, run.status));
  run.stderrText = Read(root_ / "stderr");
  for (std::string text; std::getline(transcript, text);) {
    Line line;
    const auto blank = text.find(' ');
    line.time = std::stod(text.substr(0, blank));
    line.text = text.substr(blank + 1);
    const auto second = line.text.find(' ');
    line.event = line.text.substr(0, second);
    line.rest = second == std::string::npos ? "" : line.text.substr(second + 1);
    run.lines.push_back(line);
  }
  return run;
}

std::string SimWorld::Read(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

void SimWorld::Write(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string NewGameKeys(int players, const std::string& variantKey) {
  std::string keys = "key n n\nkey " + variantKey + "\n";
  if (variantKey != "enter") keys += "key enter\n";
  keys += "key " + std::to_string(players) + " y\n";
  for (int i = 0; i < players; ++i) keys += "key enter enter y\n";
  return keys;
}

}  // namespace quorble::test
