#include "platform/desktop/shell.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "platform/common/disk.h"

namespace quorble::desktop {
namespace {

constexpr std::string_view kDocumentsKey = "XDG_DOCUMENTS_DIR=";
constexpr std::string_view kHomeVariable = "$HOME";
// The one sample every run opens first; where it lies, the others lie too.
constexpr std::string_view kSampleMark = "quorble7.wav";
// Where an install tree keeps the samples, seen from the executable's folder.
constexpr std::string_view kInstalledDataFolders[] = {"../share/games/quorble", "../share/quorble"};

std::string_view Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(" \t\r");
  return text.substr(first, last - first + 1);
}

std::string_view Unquoted(std::string_view value) {
  if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
    return value.substr(1, value.size() - 2);
  }
  return value;
}

std::string WithoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

std::string HomeFolder() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
  if (const passwd* user = getpwuid(getuid()); user != nullptr) return user->pw_dir;
  return {};
}

std::string UserDirsFile(const std::string& home) {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  const std::string folder = (config != nullptr && *config == '/') ? config : home + "/.config";
  return folder + "/user-dirs.dirs";
}

bool IsFolder(const std::string& path) {
  std::error_code ec;
  return !path.empty() && std::filesystem::is_directory(path, ec);
}

bool HoldsSamples(const std::filesystem::path& folder) {
  std::error_code ec;
  return std::filesystem::is_regular_file(folder / kSampleMark, ec);
}

}  // namespace

std::string DocumentsFolderIn(std::string_view userDirs, const std::string& home) {
  std::istringstream lines{std::string(userDirs)};
  std::string found;
  for (std::string line; std::getline(lines, line);) {
    const std::string_view entry = Trimmed(line);
    if (!entry.starts_with(kDocumentsKey)) continue;
    const std::string_view value = Unquoted(Trimmed(entry.substr(kDocumentsKey.size())));
    if (value.starts_with(kHomeVariable)) {
      found = home + std::string(value.substr(kHomeVariable.size()));
    } else if (value.starts_with('/')) {
      found = std::string(value);
    }
  }
  found = WithoutTrailingSlashes(found);
  return found == WithoutTrailingSlashes(home) ? std::string() : found;
}

// A folder named but never made would make every save fail. Without a
// usable entry, ~/Documents is kept when it is there, so that a machine
// without user-dirs.dirs still finds the games saved there before; then the
// home folder, which is what xdg-user-dirs itself falls back to.
std::string UserDocumentsFolder() {
  const std::string home = WithoutTrailingSlashes(HomeFolder());
  if (!IsFolder(home)) return {};
  if (auto userDirs = disk::ReadFile(UserDirsFile(home))) {
    const std::string named = DocumentsFolderIn(*userDirs, home);
    if (IsFolder(named)) return named;
  }
  const std::string conventional = home + "/Documents";
  return IsFolder(conventional) ? conventional : home;
}

std::string ProgramFolderFor(const std::string& executableFolder,
                             const std::string& installedFolder) {
  namespace fs = std::filesystem;
  if (HoldsSamples(executableFolder)) return executableFolder;
  for (std::string_view relative : kInstalledDataFolders) {
    const fs::path candidate = (fs::path(executableFolder) / relative).lexically_normal();
    if (HoldsSamples(candidate)) return WithoutTrailingSlashes(candidate.string());
  }
  if (!installedFolder.empty() && HoldsSamples(installedFolder)) return installedFolder;
  return executableFolder;
}

void LaunchDetached(const std::string& path) {
  // Everything the child needs is made before fork: after it, in a
  // threaded process, only async-signal-safe calls are allowed.
  std::string program = path;
  char* const argv[] = {program.data(), nullptr};
  sigset_t none;
  sigemptyset(&none);
  const pid_t middle = fork();
  if (middle < 0) return;
  if (middle == 0) {
    setsid();
    if (fork() != 0) _exit(0);  // the grandchild is adopted by init
    sigprocmask(SIG_SETMASK, &none, nullptr);
    const int nothing = open("/dev/null", O_RDWR);
    for (int standard = 0; standard <= 2; ++standard) dup2(nothing, standard);
    close_range(3, ~0U, 0);
    execv(argv[0], argv);
    _exit(127);
  }
  while (waitpid(middle, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace quorble::desktop
