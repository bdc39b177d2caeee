// The facts about a class and all its superclasses, as a text.
#pragma once

#include "platform/text/UString.h"

namespace soca {

// Visits the class and its superclasses breadth first, each once, including those that are no
// System objects, which are reported as such. For every System object the report has the properties
// blocks of the class named here, not of the visited one: only that one is loaded, each time again.
// An exception of loading it ends the report.
fl::ustring formatClassReport(const fl::ustring& className);

}  // namespace soca
