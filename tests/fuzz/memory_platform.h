// The simulator with its files kept in memory: fast enough to run the
// whole game thousands of times a second, and nothing left behind on disk.
#pragma once

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>

#include "platform/common/disk.h"
#include "platform/sim/sim_platform.h"

namespace quorble::fuzz {

class MemoryPlatform : public sim::SimPlatform {
 public:
  using sim::SimPlatform::SimPlatform;

  using Files = std::map<std::string, std::string>;
  Files files;
  std::set<std::string> folders{"/docs", "/cwd"};

  std::string FindName(const std::string& path, bool directories) override {
    const auto [folder, name] = Split(path);
    const std::string wanted = Lower(name);
    if (directories) {
      for (const auto& dir : folders) {
        if (Split(dir).first == folder && Lower(Split(dir).second) == wanted)
          return Split(dir).second;
      }
    }
    for (const auto& [file, bytes] : files) {
      if (Split(file).first == folder && Lower(Split(file).second) == wanted)
        return Split(file).second;
    }
    return {};
  }
  bool MakeDirectory(const std::string& path) override { return folders.insert(path).second; }
  bool DeleteFile(const std::string& path) override { return files.erase(path) == 1; }
  bool RenameFile(const std::string& from, const std::string& to) override {
    if (!files.count(from) || files.count(to) || folders.count(to)) return false;
    files[to] = std::move(files[from]);
    files.erase(from);
    return true;
  }
  std::optional<std::string> ReadFile(const std::string& path, std::size_t limit) override {
    const auto found = files.find(path);
    if (found == files.end() || found->second.size() > limit) return std::nullopt;
    return found->second;
  }
  bool WriteFile(const std::string& path, const std::string& bytes) override {
    if (folders.count(path) || !folders.count(Split(path).first)) return false;
    files[path] = bytes;
    return true;
  }
  bool AppendFile(const std::string& path, const std::string& bytes) override {
    if (folders.count(path) || !folders.count(Split(path).first)) return false;
    files[path] += bytes;
    return true;
  }
  bool LockDataFolder(const std::string&) override { return true; }

 private:
  static std::pair<std::string, std::string> Split(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return {".", path};
    return {path.substr(0, slash), path.substr(slash + 1)};
  }
  static std::string Lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
  }
};

}  // namespace quorble::fuzz
