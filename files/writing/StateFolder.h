// The user's folder for data that outlives a run, and what is trusted in it.
#pragma once

#include <stdexcept>
#include <string>

#include "files/writing/Descriptor.h"

namespace soca {

// A journal that cannot be written or read. `what` has the file and the reason.
class JournalError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The absolute path of the user's state folder: `$XDG_STATE_HOME/soca`, or if that variable is not
// set or no absolute path, `$HOME/.local/state/soca`. It need not exist. Throws JournalError if the
// environment names no such folder.
std::string stateFolder();

// Creates the folder and the missing ones above it, for their owner only. Throws JournalError.
void makeFolders(const std::string& path);

// If the folder exists, it must be the user's and no link, and afterwards nobody else can use it.
// Throws JournalError.
void secureFolder(const std::string& path);

// Opens a file of such a folder without waiting: a regular file of the user, and no link. Throws
// JournalError.
Descriptor openOwnFile(const std::string& path, int flags);

}  // namespace soca
