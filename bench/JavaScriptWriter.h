// Writes the text of one generated JavaScript class, of the same form and size as the Velum ones:
// for comparable tools, which read that language.
#pragma once

#include <string>

#include "bench/ClassWriter.h"

namespace bench {

// `shape.base` names a class in the same folder tree, with `.` between the folders. An outdated
// class has a few places that linters report.
std::string writeJavaScriptClass(const ClassShape& shape);

}  // namespace bench
