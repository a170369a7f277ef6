#include "platform/common/disk.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
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

// A descriptor closed when it goes out of scope.
class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  ~Fd() {
    if (fd_ >= 0) ::close(fd_);
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  int get() const { return fd_; }
  bool ok() const { return fd_ >= 0; }
  // Closing can report a write error that write itself did not.
  bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return ::close(fd) == 0;
  }

 private:
  int fd_;
};

bool WriteAll(int fd, const std::string& bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

// A rename or an unlink lives in the folder's entry list: without this a
// power cut can undo it even though the file's own data were synced.
bool SyncFolder(const fs::path& folder) {
  Fd fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return fd.ok() && ::fsync(fd.get()) == 0;
}

constexpr char kAlphabet[] = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr char kTemporaryMark[] = ".tmp-";
constexpr size_t kSuffixLength = 8;

// "quorble.sav.tmp-k3v9x0aa" and the like: a game file's name, the mark and
// a suffix as RandomSuffix makes them.
bool IsTemporaryName(const std::string& name) {
  constexpr size_t kMarkLength = sizeof kTemporaryMark - 1;
  if (name.size() <= kMarkLength + kSuffixLength || Lower(name).rfind("quorble", 0) != 0) {
    return false;
  }
  const size_t mark = name.size() - kMarkLength - kSuffixLength;
  return name.compare(mark, kMarkLength, kTemporaryMark) == 0 &&
         name.find_first_not_of(kAlphabet, mark + kMarkLength) == std::string::npos;
}

std::string RandomSuffix() {
  unsigned char noise[kSuffixLength];
  if (::getrandom(noise, sizeof noise, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof noise)) {
    const auto mix = static_cast<unsigned long>(::getpid()) ^ static_cast<unsigned long>(::clock());
    for (size_t i = 0; i < sizeof noise; ++i) noise[i] = static_cast<unsigned char>(mix >> i * 4);
  }
  std::string suffix;
  for (unsigned char byte : noise) suffix += kAlphabet[byte % (sizeof kAlphabet - 1)];
  return suffix;
}

// A new file beside `path` that no one else can have opened: a name of its
// own (two copies of the game never share it), O_EXCL so it is ours alone,
// O_NOFOLLOW so a link planted under the name is never followed.
int CreateTemporary(const std::string& path, std::string& name) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    name = path + kTemporaryMark + RandomSuffix();
    const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
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
    std::error_code kindError;
    if (it->is_regular_file(kindError) || (directories && it->is_directory(kindError)))
      return found;
  }
  return {};
}

bool MakeDirectory(const std::string& path) {
  std::error_code ec;
  return fs::create_directory(path, ec) && SyncFolder(SplitPath(path).first);
}

bool DeleteFile(const std::string& path) {
  return ::unlink(path.c_str()) == 0 && SyncFolder(SplitPath(path).first);
}

bool RenameFile(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) != 0) {
    // A file system without the flag: the check and the rename are then two
    // steps, which the one game per data folder makes safe enough.
    if (errno != EINVAL && errno != ENOSYS) return false;
    struct stat there;
    if (::lstat(to.c_str(), &there) == 0 || errno != ENOENT) return false;
    if (::rename(from.c_str(), to.c_str()) != 0) return false;
  }
  const fs::path fromFolder = SplitPath(from).first, toFolder = SplitPath(to).first;
  return SyncFolder(toFolder) && (fromFolder == toFolder || SyncFolder(fromFolder));
}

std::optional<std::string> ReadFile(const std::string& path, std::size_t limit) {
  // Not blocking on open, so a planted pipe can't hang the game.
  Fd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat facts;
  if (!fd.ok() || ::fstat(fd.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) return std::nullopt;
  if (static_cast<std::size_t>(facts.st_size) > limit) return std::nullopt;
  std::string content;
  char block[65536];
  for (;;) {
    const ssize_t n = ::read(fd.get(), block, sizeof block);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return std::nullopt;
    if (n == 0) return content;
    content.append(block, static_cast<size_t>(n));
    // The file grew after the size was looked at.
    if (content.size() > limit) return std::nullopt;
  }
}

bool WriteFile(const std::string& path, const std::string& bytes) {
  std::string temporary;
  Fd fd(CreateTemporary(path, temporary));
  if (!fd.ok()) return false;
  const bool written = WriteAll(fd.get(), bytes) && ::fsync(fd.get()) == 0;
  if (fd.Close() && written && ::rename(temporary.c_str(), path.c_str()) == 0) {
    return SyncFolder(SplitPath(path).first);
  }
  ::unlink(temporary.c_str());
  return false;
}

bool AppendFile(const std::string& path, const std::string& bytes) {
  Fd fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC, 0644));
  if (!fd.ok()) return false;
  const bool written = WriteAll(fd.get(), bytes) && ::fsync(fd.get()) == 0;
  // The folder too, in case the append created the file.
  return fd.Close() && written && SyncFolder(SplitPath(path).first);
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

void RemoveStaleTemporaries(const std::string& folder) {
  std::error_code ec;
  bool removed = false;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    std::error_code kind;
    if (!it->is_regular_file(kind) || !IsTemporaryName(it->path().filename().string())) continue;
    removed = ::unlink(it->path().c_str()) == 0 || removed;
  }
  if (removed) SyncFolder(folder);
}

FolderLock::~FolderLock() {
  if (fd_ >= 0) ::close(fd_);
}

LockResult FolderLock::Take(const std::string& lockFile) {
  if (fd_ >= 0) return LockResult::Taken;
  const int fd = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0644);
  if (fd < 0) return LockResult::Unavailable;
  if (::flock(fd, LOCK_EX | LOCK_NB) == 0) {
    fd_ = fd;
    return LockResult::Taken;
  }
  const bool held = errno == EWOULDBLOCK;
  ::close(fd);
  return held ? LockResult::HeldElsewhere : LockResult::Unavailable;
}

}  // namespace quorble::disk
