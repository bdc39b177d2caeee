// What is known of a class and of all its superclasses, as a text.
#pragma once

#include "platform/text/UString.h"

namespace soca {

// Walks up from the class, breadth first, each class once. A class that is no System object is told
// to be none, and the walk goes on. Under every System object stand the properties blocks of the
// class named here, not of the one in turn: only that one is ever loaded, anew each time, and what
// loading it raises ends the report.
fl::ustring formatClassReport(const fl::ustring& className);

}  // namespace soca
