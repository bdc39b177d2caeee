// The folder for data that outlives a run.
#pragma once

#include <string>

namespace soca {

// The absolute path of the user's state folder: `$XDG_STATE_HOME/soca`, or if that variable is not
// set or no absolute path, `$HOME/.local/state/soca`. It need not exist. Throws JournalError if the
// environment names no such folder.
std::string stateFolder();

// Creates the folder and the missing ones above it, for their owner only. Throws JournalError.
void makeFolders(const std::string& path);

}  // namespace soca
