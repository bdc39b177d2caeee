// Walks over the classes that a class derives from.
#pragma once

#include <functional>
#include <memory>

#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// Calls `visit` with the class and then, breadth first, with every known class that it reaches over
// declared superclasses, each once, until `visit` answers true. Returns whether it did.
bool anyInHierarchy(const std::shared_ptr<const ClassDescription>& first,
                    const std::function<bool(const ClassDescription&)>& visit);

}  // namespace sotarn
