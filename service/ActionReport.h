// The actions of each class as a text.
#pragma once

#include <list>

#include "platform/text/UString.h"
#include "service/ActionCollection.h"

namespace soca {

// What `update` would do, without the messages. Extents and texts stand as the actions give them,
// with no test for overlaps; lines end at U+000A.
//
//   CLASS: foo.Bar
//
//   File: /work/foo/Bar.vlm
//
//   Range: From (4,8) to (4,15)
//   Replacement: "x = 1"
//
// The actions of `entries` go while they are printed. What looking up a file or an action's answers
// raises goes through.
fl::ustring formatActionReport(std::list<ClassActions> entries);

}  // namespace soca
