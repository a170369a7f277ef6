// What the browser build's C library lacks of what the shared file code
// uses; the build includes this ahead of that code.
#pragma once

#include <sys/types.h>

#include <cstddef>

#ifndef RENAME_NOREPLACE
#define RENAME_NOREPLACE 1
#endif

extern "C" int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                         unsigned int flags);
