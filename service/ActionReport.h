// The actions of each class as a text.
#pragma once

#include <list>

#include "platform/text/UString.h"
#include "service/ActionCollection.h"

namespace soca {

// The actions that `update` would apply, without the messages. Extents and texts are those of the
// actions, not tested for overlaps; lines end with U+000A.
//
//   CLASS: foo.Bar
//
//   File: /r/foo/Bar.vlm
//
//   Range: From (4,8) to (4,15)
//   Replacement: "x = 1"
//
// Frees the actions of `entries` while printing. Exceptions of looking up a file or of an action
// are passed on.
fl::ustring formatActionReport(std::list<ClassActions> entries);

}  // namespace soca
