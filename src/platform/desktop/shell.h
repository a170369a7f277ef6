// The user's folders and the starting of other programs.
#pragma once

#include <string>
#include <string_view>

namespace quorble::desktop {

// The documents folder that a user-dirs.dirs text names, with $HOME put in;
// empty when it names none, or names the home folder itself, which is how
// that file says "no such folder".
std::string DocumentsFolderIn(std::string_view userDirs, const std::string& home);

// The user's documents folder when it exists, else empty.
std::string UserDocumentsFolder();

// Starts the program at `path` on its own: in a session of its own, with
// none of our descriptors, never waited for and never left a zombie.
void LaunchDetached(const std::string& path);

}  // namespace quorble::desktop
