// Where the program keeps what outlives a run.
#pragma once

#include <string>

namespace soca {

// The absolute path of the user's folder for this: `$XDG_STATE_HOME/soca`, or if that variable is
// not set or no absolute path, `$HOME/.local/state/soca`. It need not exist. Throws JournalError if
// the environment tells of no such place.
std::string stateFolder();

// Makes the folder and those above it, for their owner alone, as far as they are missing. Throws
// JournalError.
void makeFolders(const std::string& path);

}  // namespace soca
