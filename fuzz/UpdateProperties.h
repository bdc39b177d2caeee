// The properties of the update of any class.
#pragma once

#include <string>
#include <vector>

#include "fuzz/ClassFiles.h"

namespace soca::fuzz {

// The result for a class.
struct UpdateVerdict {
  enum class Type {
    unchanged,
    updated,
    failed,   // the call raised a failure with an id
    spoiled,  // for a cause among tests/known/, the new text is refused or cannot be made
  };
  Type type = Type::unchanged;
  // The failure's id, or the cause's title.
  std::string reason;
  // The number of further updates until an update had no actions.
  unsigned furtherUpdates = 0;
};

// Updates the first class by all families, alone and together, with its superclasses and without,
// and makes its reports. Throws a Violation unless all of this holds:
// - the call and its plan give the same results, also when repeated;
// - it fails with a message id only, or for a known cause;
// - the new text has no syntax errors, the same members, and the old text outside of the edits,
//   unless there is a known cause;
// - a further update changes nothing, except where the rules require it, and updates terminate.
UpdateVerdict checkUpdate(const std::vector<ClassFile>& files);

}  // namespace soca::fuzz
