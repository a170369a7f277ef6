// File services on the real disk, shared by every platform: the simulator
// too works on real files, so tests can look at what the game wrote.
#pragma once

#include <optional>
#include <string>

namespace quorble::disk {

std::string FindName(const std::string& path, bool directories);
bool MakeDirectory(const std::string& path);
bool DeleteFile(const std::string& path);
bool RenameFile(const std::string& from, const std::string& to);
std::optional<std::string> ReadFile(const std::string& path);
bool WriteFile(const std::string& path, const std::string& bytes);
bool AppendFile(const std::string& path, const std::string& bytes);
std::string CurrentDirectory();
// The folder of the running executable.
std::string ExecutableFolder();

}  // namespace quorble::disk
