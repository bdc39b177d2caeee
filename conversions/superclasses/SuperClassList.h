// Whether what is known of the superclasses suffices to rewrite their list.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "conversions/parts/LinePlace.h"
#include "conversions/superclasses/Ancestry.h"
#include "platform/analyzer/AnalysisResult.h"
#include "service/UpdatePlan.h"

namespace soca {

// A superclass that was not found, and the place in the list that leads to it.
struct UnresolvedSuperClass : LinePlace {
  Ancestry::Missing missing;
};

// The superclass because of which the rewritten list may be wrong: one that stays in the list, or,
// where `velum.System` is added, any of the class's ancestors. Empty if there is none, and for a
// plan that does not rewrite the list. Needs the analysis and the actions of the plan.
std::optional<UnresolvedSuperClass> findUnresolvedInList(const PlannedClass& planned);

// What was not found, what is not known therefore, and what to do about it, as one clause.
std::string describeUnresolved(const UnresolvedSuperClass& unresolved);

// Whether the plan rewrites the list of superclasses and adds `velum.System` to it, beside at least
// one superclass that stays.
bool addsSystemBaseBeside(const PlannedClass& planned);

// The place of the name in the class's list of superclasses, or of the list's first name if it is
// not in the list. Unknown for a class without superclasses.
LinePlace placeInSuperClassList(const ca::AnalysisResult& analysis, std::string_view name);

}  // namespace soca
