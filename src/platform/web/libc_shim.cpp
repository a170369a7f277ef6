#include "platform/web/libc_shim.h"

#include <sys/random.h>
#include <unistd.h>

#include <cerrno>

// Without the flag the caller checks and renames in two steps, which one
// tab per data folder makes safe.
extern "C" int renameat2(int, const char*, int, const char*, unsigned int) {
  errno = ENOSYS;
  return -1;
}

// Declared by the C library's headers but not in its archive.
extern "C" ssize_t getrandom(void* buffer, std::size_t length, unsigned int) {
  return getentropy(buffer, length) == 0 ? static_cast<ssize_t>(length) : -1;
}
