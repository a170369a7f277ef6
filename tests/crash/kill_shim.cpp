// Preloaded into the simulator by the crash tests. It counts every call
// that changes a file or a folder, and can
// - kill the process with SIGKILL just before call QUORBLE_KILL_AT, and
// - log each such call to QUORBLE_SHIM_LOG, one line each, for tests of
//   the order of syncs and renames.
// Only libc's own entry points are wrapped: the game's file code calls
// nothing else to change the disk.
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

long killAt = -1;
long calls = 0;
int logFd = -1;
bool ready = false;

template <typename F>
F Real(const char* name) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

void Setup() {
  if (ready) return;
  ready = true;
  if (const char* at = std::getenv("QUORBLE_KILL_AT")) killAt = std::atol(at);
  if (const char* path = std::getenv("QUORBLE_SHIM_LOG")) {
    logFd = static_cast<int>(
        syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  }
}

std::string KindOf(int fd) {
  struct stat facts;
  if (fstat(fd, &facts) != 0) return "?";
  return S_ISDIR(facts.st_mode) ? "folder" : "file";
}

// Counts one file-changing call, logs it and, at the chosen one, dies.
void Point(const char* what, const char* a = "", const char* b = "") {
  Setup();
  ++calls;
  if (logFd >= 0) {
    char line[4200];
    const int n = std::snprintf(line, sizeof line, "%ld %s %s %s\n", calls, what, a, b);
    if (n > 0) syscall(SYS_write, logFd, line, static_cast<size_t>(n) < sizeof line ? n : 0);
  }
  if (calls == killAt) kill(getpid(), SIGKILL);
}

bool Changes(int flags) { return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0; }

// open and open64 alike: `args` holds the mode behind the flags.
int OpenThrough(const char* real, const char* path, int flags, va_list args) {
  const mode_t mode = va_arg(args, mode_t);
  if (Changes(flags)) Point("open", path);
  return Real<int (*)(const char*, int, ...)>(real)(path, flags, mode);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list args;
  va_start(args, flags);
  const int fd = OpenThrough("open", path, flags, args);
  va_end(args);
  return fd;
}

int open64(const char* path, int flags, ...) {
  va_list args;
  va_start(args, flags);
  const int fd = OpenThrough("open64", path, flags, args);
  va_end(args);
  return fd;
}

ssize_t write(int fd, const void* data, size_t size) {
  // The transcript and error output are no files of the game's.
  if (fd > 2) Point("write", KindOf(fd).c_str());
  return Real<ssize_t (*)(int, const void*, size_t)>("write")(fd, data, size);
}

int fsync(int fd) {
  Point("fsync", KindOf(fd).c_str());
  return Real<int (*)(int)>("fsync")(fd);
}

int rename(const char* from, const char* to) {
  Point("rename", from, to);
  return Real<int (*)(const char*, const char*)>("rename")(from, to);
}

int renameat2(int fromDir, const char* from, int toDir, const char* to, unsigned flags) {
  Point("rename", from, to);
  return Real<int (*)(int, const char*, int, const char*, unsigned)>("renameat2")(fromDir, from,
                                                                                  toDir, to, flags);
}

int unlink(const char* path) {
  Point("unlink", path);
  return Real<int (*)(const char*)>("unlink")(path);
}

int remove(const char* path) {
  Point("unlink", path);
  return Real<int (*)(const char*)>("remove")(path);
}

int mkdir(const char* path, mode_t mode) {
  Point("mkdir", path);
  return Real<int (*)(const char*, mode_t)>("mkdir")(path, mode);
}

}  // extern "C"
