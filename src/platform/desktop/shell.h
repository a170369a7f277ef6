// The user's folders and the starting of other programs.
#pragma once

#include <string>
#include <string_view>

namespace quorble::desktop {

// The documents folder that a user-dirs.dirs text names, with $HOME put in;
// empty when it names none, or names the home folder itself, which is how
// that file says "no such folder".
std::string DocumentsFolderIn(std::string_view userDirs, const std::string& home);

// The user's documents folder as xdg-user-dirs names it, else the home
// folder; empty only when there is no home folder at all.
std::string UserDocumentsFolder();

// The folder that holds the game's samples: the executable's own when they
// lie beside it (a build tree), else the data folder of the install tree the
// executable stands in, so that a moved install works too; `installedFolder`
// (where this build installs its data) only when neither holds them. With no
// samples anywhere, the executable's folder, and the game plays silence.
std::string ProgramFolderFor(const std::string& executableFolder,
                             const std::string& installedFolder);

// Starts the program at `path` on its own: in a session of its own, with
// none of our descriptors, never waited for and never left a zombie.
void LaunchDetached(const std::string& path);

}  // namespace quorble::desktop
