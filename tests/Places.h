// Where the project and its program are. Only one file is compiled with the paths, so that the
// others are the same in every copy of the project.
#pragma once

#include <string>
#include <string_view>

namespace soca::testing {

// The absolute path of a file or folder of the project, such as "examples".
std::string projectPath(std::string_view relative);

// The absolute path of the program.
std::string programPath();

}  // namespace soca::testing
