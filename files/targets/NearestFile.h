// Suggestions for paths and classes that do not exist. Lists the folders along the name, so it is
// to be used only after a failure.
#pragma once

#include <string>
#include <string_view>

#include "files/targets/ClassRoots.h"

namespace soca {

// The path with each missing part replaced by the nearest name in its folder; empty if a part has
// no near name, or if the whole path exists.
std::string nearestPath(std::string_view path);
std::string nearestFolder(std::string_view path);

// The class with the nearest name on the roots, or else a class of that name in another package;
// empty if there is neither.
std::string nearestClass(std::string_view className, const ClassRoots& roots);

// "; did you mean `-p my-src`?" for `my-src/audio/Mixer.vlm`: the part of the path up to the last
// folder that can be no package. Empty if there is none.
std::string suggestRoot(std::string_view path);

// The same for the first class file below the folder, which is absolute, with the path relative to
// the current folder. Empty if there is none.
std::string suggestRootBelow(const std::string& folder);

}  // namespace soca
