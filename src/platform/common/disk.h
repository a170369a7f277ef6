// File services on the real disk, shared by every platform: the simulator
// too works on real files, so tests can look at what the game wrote.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace quorble::disk {

// Larger files are refused unread unless the caller allows more: no small
// file we read comes near it, and a planted giant must not eat the memory.
inline constexpr std::size_t kMaxFileBytes = std::size_t{1} << 20;

std::string FindName(const std::string& path, bool directories);
bool MakeDirectory(const std::string& path);
// Each change below is made durable (file and folder synced) before it
// reports success, so a power cut after a true loses nothing.
bool DeleteFile(const std::string& path);
// Never replaces: false when anything is already at `to`.
bool RenameFile(const std::string& from, const std::string& to);
// Nothing for a file that is missing, not a regular file, or over `limit`.
std::optional<std::string> ReadFile(const std::string& path, std::size_t limit = kMaxFileBytes);
// Through a temporary file of a unique name beside `path`, renamed over it.
bool WriteFile(const std::string& path, const std::string& bytes);
bool AppendFile(const std::string& path, const std::string& bytes);
std::string CurrentDirectory();
// The folder of the running executable.
std::string ExecutableFolder();

// Removes the temporary files WriteFile left in `folder` when a process
// died mid-write. Only safe while holding the folder's lock.
void RemoveStaleTemporaries(const std::string& folder);

enum class LockResult { Taken, HeldElsewhere, Unavailable };

// An exclusive advisory lock (flock) on a file in a folder, held for the
// life of the object and released by the kernel if the process dies. The
// descriptor is close-on-exec, so a program we start never inherits it.
class FolderLock {
 public:
  FolderLock() = default;
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  LockResult Take(const std::string& lockFile);

 private:
  int fd_ = -1;
};

}  // namespace quorble::disk
