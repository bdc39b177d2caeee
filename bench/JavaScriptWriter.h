// Writes the text of one made-up JavaScript class, of the same build and size as the Velum ones:
// for tools of the same trade, which read that language.
#pragma once

#include <string>

#include "bench/ClassWriter.h"

namespace bench {

// `shape.base` names a class of the same folder tree, with `.` between the folders. An outdated
// class has a handful of places that linters offer to mend.
std::string writeJavaScriptClass(const ClassShape& shape);

}  // namespace bench
