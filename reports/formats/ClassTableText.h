// A class table to complete.
#pragma once

#include <string>
#include <vector>

namespace soca {

// The table with an entry for each class, in which the names of its superclasses are to be filled
// in. One line for each class.
std::string formatClassTable(const std::vector<std::string>& classNames);

}  // namespace soca
