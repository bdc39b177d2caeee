// What holds of the update of any class.
#pragma once

#include <string>
#include <vector>

#include "fuzz/ClassFiles.h"

namespace soca::fuzz {

// What became of a class.
struct UpdateVerdict {
  enum class Type {
    unchanged,
    updated,
    failed,   // the call raised a failure with an id
    spoiled,  // for a cause among tests/known/, the new text is refused or can't be made
  };
  Type type = Type::unchanged;
  // The failure's id, or the cause's title.
  std::string reason;
  // How often an updated text was updated again until nothing was left to do.
  unsigned furtherUpdates = 0;
};

// Updates the first class by all families, alone and together, with its superclasses and without,
// and makes its reports. Throws a Violation unless all of this holds:
// - the call and its plan give the same results, twice;
// - it fails with a message id only, or for a known cause;
// - the new text has no syntax errors, the same members, and the old text outside of the edits,
//   unless there is a known cause;
// - a further update does nothing, except where the rules say so, and updates come to rest.
UpdateVerdict checkUpdate(const std::vector<ClassFile>& files);

}  // namespace soca::fuzz
