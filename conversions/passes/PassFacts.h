// What a class of a run has to do with the others.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "conversions/passes/MethodUses.h"
#include "platform/text/UString.h"

namespace soca {

// The classes that a class derives from directly and that have a file. In UTF-8.
std::vector<std::string> findSuperClassesWithFile(const std::string& className);

struct PassFacts {
  std::vector<std::string> superClasses;
  // Of the text as it was read; only for a class with such superclasses or with methods to convert.
  MethodNames names;
  // The methods that its passes took away or gave it, as far as they concern derived classes, and
  // those that they took away, as far as others may use them.
  MethodSet changedMethods = 0;
  MethodSet takenMethods = 0;
  // Whether its file stays as it is although the passes change it.
  bool isKept = false;

  // Whether no other class can change its result, as far as the class itself shows.
  bool isIndependent() const {
    return (superClasses.empty() || names.concerned() == 0) && takenMethods == 0;
  }
};

// What a class sees of the others in one pass.
struct PassView {
  // The number of the pass in the run, counted from 1.
  unsigned pass = 1;
  // The paths and texts of superclasses that earlier passes changed.
  std::vector<std::pair<std::string, std::shared_ptr<const fl::ustring>>> texts;
  std::vector<MethodUse> uses;
};

}  // namespace soca
