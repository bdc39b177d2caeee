// Whether a class would be converted if more were known of it.
#pragma once

#include <string>

#include "soca/Updater.h"

namespace soca {

// Whether the rules would have something to do or to report in the class's file if the class
// derived from `velum.System` alone. A properties block that never held anything does not count
// without an old attribute, because it may be in any class. Names are in UTF-8; `path` is that of
// the file. False for a class whose file cannot be analysed or lists no superclasses.
bool hasOldForms(const std::string& className, const std::string& path, UpdateMask rules);

}  // namespace soca
