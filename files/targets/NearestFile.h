// What somebody may have meant by a path or a class that there is not. Lists the folders along the
// name, so it is for the moment in which something failed.
#pragma once

#include <string>
#include <string_view>

#include "files/targets/ClassRoots.h"

namespace soca {

// The path with what is not there replaced by the nearest names in the folders, part by part; empty
// if some part has none, or if all of it is there.
std::string nearestPath(std::string_view path);
std::string nearestFolder(std::string_view path);

// The class with the nearest name on the roots, or else one in another package that has its name;
// empty if there is neither.
std::string nearestClass(std::string_view className, const ClassRoots& roots);

}  // namespace soca
