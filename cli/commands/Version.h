// The version of the program and of its parts.
#pragma once

#include <string>

namespace soca::cli {

// The version alone on the first line; then the commit, if it is known, the compiler and the
// libraries. Contains no date and no path, so that the same sources give the same program.
std::string versionText();

}  // namespace soca::cli
