// The properties of the update of any class.
#pragma once

#include <string>
#include <vector>

#include "fuzz/ClassFiles.h"

namespace soca::fuzz {

// The result of the service for a class, and what the program makes of it.
struct UpdateVerdict {
  enum class Type {
    unchanged,
    updated,
    failed,   // the call raised a failure
    refused,  // the new text does not pass the checks
  };
  Type type = Type::unchanged;
  // Of the failure.
  std::string reason;
  // The number of passes in which the program changed the text.
  unsigned passes = 0;
};

// Updates the first class by all families, alone and together, with its superclasses and without,
// and makes its reports. Throws a Violation unless all of this holds:
// - the call and its plan give the same results, or fail alike;
// - only actions change the text, and a text that passes the checks has no syntax errors;
// - its conversions and its passes have their properties.
UpdateVerdict checkUpdate(const std::vector<ClassFile>& files);

}  // namespace soca::fuzz
