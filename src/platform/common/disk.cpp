#include "platform/common/disk.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "lower_case.h"

namespace fs = std::filesystem;

namespace quorble::disk {
namespace {

// Splits "a/b/name" into its folder ("a/b", or "." for a bare name) and name.
std::pair<fs::path, std::string> SplitPath(const std::string& path) {
  fs::path p(path);
  fs::path folder = p.parent_path();
  if (folder.empty()) folder = ".";
  return {folder, p.filename().string()};
}

bool WriteAll(int fd, const std::string& bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

}  // namespace

std::string FindName(const std::string& path, bool directories) {
  auto [folder, name] = SplitPath(path);
  if (name.empty()) return {};
  std::error_code ec;
  // An exact match needs no listing of the folder.
  auto exact = fs::status(folder / name, ec);
  if (!ec && (fs::is_regular_file(exact) || (directories && fs::is_directory(exact)))) return name;
  const std::string wanted = Lower(name);
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string found = it->path().filename().string();
    if (Lower(found) != wanted) continue;
    std::error_code kind_ec;
    if (it->is_regular_file(kind_ec) || (directories && it->is_directory(kind_ec))) return found;
  }
  return {};
}

bool MakeDirectory(const std::string& path) {
  std::error_code ec;
  return fs::create_directory(path, ec);
}

bool DeleteFile(const std::string& path) {
  std::error_code ec;
  return fs::remove(path, ec);
}

bool RenameFile(const std::string& from, const std::string& to) {
  std::error_code ec;
  fs::rename(from, to, ec);
  return !ec;
}

std::optional<std::string> ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream content;
  content << in.rdbuf();
  if (in.bad()) return std::nullopt;
  return content.str();
}

bool WriteFile(const std::string& path, const std::string& bytes) {
  const std::string temporary = path + ".tmp";
  int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  bool ok = WriteAll(fd, bytes) && ::fsync(fd) == 0;
  ok = (::close(fd) == 0) && ok;
  if (ok && ::rename(temporary.c_str(), path.c_str()) == 0) return true;
  ::unlink(temporary.c_str());
  return false;
}

bool AppendFile(const std::string& path, const std::string& bytes) {
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  bool ok = WriteAll(fd, bytes);
  return (::close(fd) == 0) && ok;
}

std::string CurrentDirectory() {
  std::error_code ec;
  auto here = fs::current_path(ec);
  return ec ? std::string(".") : here.string();
}

std::string ExecutableFolder() {
  std::error_code ec;
  auto self = fs::read_symlink("/proc/self/exe", ec);
  return ec ? CurrentDirectory() : self.parent_path().string();
}

}  // namespace quorble::disk
