// What a class of a run has to do with the others.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "conversions/passes/ClassPasses.h"
#include "conversions/passes/MethodUses.h"
#include "platform/text/UString.h"
#include "service/PlannedClass.h"

namespace soca {

// The classes that a class derives from directly and that have a file. In UTF-8.
std::vector<std::string> findSuperClassesWithFile(const std::string& className);

// Whether a conversion of the superclass may delete an abstract property that the class declares
// too.
bool mayFreeProperty(const std::string& superClass, const std::string& className);

// What one pass made of a class.
struct PassRecord {
  // The number of the pass in the run, counted from 1.
  unsigned pass = 1;
  // The text after it; null if it changed nothing.
  std::shared_ptr<const fl::ustring> newText;
  // Of the text after it.
  MethodNames names;
  // The methods for which it found conversions.
  MethodSet foundMethods = 0;
  bool isUnsettled = false;
};

struct PassFacts {
  std::vector<std::string> superClasses;
  // Of the text as it was read; only for a class with such superclasses or with methods to convert.
  MethodNames names;
  // The methods that its passes took away or gave it, as far as they concern derived classes, and
  // those that they took away, as far as others may use them.
  MethodSet changedMethods = 0;
  MethodSet takenMethods = 0;
  // Whether something is not converted because a property is abstract.
  bool hasAbstractFinding = false;
  // Whether its list of superclasses may be converted. In a cycle of superclasses, this may take
  // away what makes the derived classes System objects.
  bool hasOldSuperClasses = false;
  // Whether it or a superclass may be in such a cycle. Superclasses are not looked at if they are
  // very many.
  bool mayReachCycle = false;
  // Whether its file stays as it is although the passes change it.
  bool isKept = false;
  // All passes of the class alone; empty if they do not matter for any class.
  std::vector<PassRecord> passes;

  // Whether no other class can change its result, as far as the class itself shows.
  bool isIndependent() const {
    const bool asksNothing = names.concerned() == 0 && !hasAbstractFinding && !mayReachCycle;
    return (superClasses.empty() || asksNothing) && takenMethods == 0;
  }
  // Whether other classes may concern it, or it may concern them.
  bool takesPart() const {
    return !isIndependent() || (!superClasses.empty() && names.used() != 0);
  }
};

// The facts of a class before its passes, from the plan of the text as it was read.
PassFacts findPassFacts(const PlannedClass& planned);

// What a class sees of the others in one pass.
struct PassView {
  // The number of the pass in the run, counted from 1.
  unsigned pass = 1;
  // The paths and texts of superclasses that earlier passes changed.
  std::vector<std::pair<std::string, std::shared_ptr<const fl::ustring>>> texts;
  std::vector<MethodUse> uses;
};

// Makes the passes of the views, and after the last one further passes that see the same, until
// nothing changes. `names` are those of the text as it was read; null if the passes need not be
// recorded. If it throws, the passes before are in the records.
void makeAllPasses(ClassPasses& passes, const std::vector<PassView>& views,
                   const MethodNames* names, std::vector<PassRecord>& records);

}  // namespace soca
