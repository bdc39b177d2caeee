// Properties of the conversions of any class.
#pragma once

#include <string>

#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca::fuzz {

// Makes subsets of the conversions that all families find in the class: all and none, all subsets
// of a few, and 20 random ones of many, with edits as in a plan with these options. Throws a
// Violation unless:
// - with all conversions, the actions, the text and the messages, or the failure, are those of the
//   update; with none, the text does not change;
// - each action belongs only to conversions that are made, and so does each finding that belongs to
//   one;
// - a new text that the checks take has exactly the expected members, and none has syntax errors
//   where the text with all conversions is without faults;
// - only members of conversions that are made change, and those are as with all conversions;
// - the next update finds only the other conversions, and with these the members are as with all,
//   except where a companion stays for another property;
// - the edits of each conversion give the text with only this one;
// - each conversion has a risk, with reasons unless it is safe, and the places of these are known.
void checkConversions(const fl::ustring& className, const PlanOptions& options);

}  // namespace soca::fuzz
