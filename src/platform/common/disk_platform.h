// The file services every platform shares: the game's files are real files,
// in the simulator too, so tests can look at what the game wrote.
#pragma once

#include "platform/common/disk.h"
#include "platform/platform.h"

namespace quorble {

class DiskPlatform : public Platform {
 public:
  std::string FindName(const std::string& path, bool directories) override {
    return disk::FindName(path, directories);
  }
  bool MakeDirectory(const std::string& path) override { return disk::MakeDirectory(path); }
  bool DeleteFile(const std::string& path) override { return disk::DeleteFile(path); }
  bool RenameFile(const std::string& from, const std::string& to) override {
    return disk::RenameFile(from, to);
  }
  std::optional<std::string> ReadFile(const std::string& path, std::size_t limit) override {
    return disk::ReadFile(path, limit);
  }
  bool WriteFile(const std::string& path, const std::string& bytes) override {
    return disk::WriteFile(path, bytes);
  }
  bool AppendFile(const std::string& path, const std::string& bytes) override {
    return disk::AppendFile(path, bytes);
  }
  bool LockDataFolder(const std::string& folder) override {
    const auto result = lock_.Take(folder + "/quorble.lock");
    // Held, the folder is ours alone: what a killed run left half-written
    // can go.
    if (result == disk::LockResult::Taken) disk::RemoveStaleTemporaries(folder);
    return result != disk::LockResult::HeldElsewhere;
  }

 private:
  disk::FolderLock lock_;
};

}  // namespace quorble
