// Completion scripts for shells.
#pragma once

#include <string>

namespace soca::cli {

// Scripts that complete commands, options, their words, files, folders, ids and names of classes.
std::string bashCompletion();
std::string zshCompletion();
std::string fishCompletion();

}  // namespace soca::cli
