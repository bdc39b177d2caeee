// The conversions because of which a new text has faults.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "conversions/Checks.h"
#include "conversions/risk/Risk.h"
#include "platform/analyzer/AnalysisResult.h"
#include "service/PlannedClass.h"

namespace soca {

// The index of a conversion, and the reason not to make it.
struct GuiltyConversion {
  std::size_t conversion = 0;
  ConversionReason reason;
  // The indices of some conversions without which it may be made: those that edit the same line.
  std::vector<std::size_t> meets = {};
};

// A line on which edits of one conversion meet, counted from 0.
struct SelfMeeting {
  std::size_t conversion = 0;
  std::uint64_t line = 0;
};

// All that the faults of `planned` show: of several edits on one line, only those that meet the
// first one.
std::vector<SelfMeeting> findSelfMeetings(const PlannedClass& planned);

// Those because of which actions cannot be applied: at least one if there are faults. `planned`
// must list its faults. Where own edits of conversions meet, only these are guilty at first. Of two
// that edit one line, the first in the order of the rules is not guilty. What only meets the edits
// of a guilty one is not guilty either: it may be made without that.
std::vector<GuiltyConversion> findGuiltyOfFaults(const PlannedClass& planned);

// Those whose new text holds the syntax errors, those that concern the members that differ, or
// those that edit the line near which text is lost; the one with the first error first. Empty if
// nothing shows where the fault comes from. `planned` must have its new lines.
std::vector<GuiltyConversion> findGuiltyOfText(const PlannedClass& planned,
                                               const ca::AnalysisResult& updated,
                                               const NewTextFault& fault);

// The reason for a conversion that is only known to be among those that cause the fault.
ConversionReason reasonFor(const NewTextFault& fault);

}  // namespace soca
