// The edits that make one conversion without the others.
#pragma once

#include <vector>

#include "conversions/Conversions.h"
#include "platform/text/FileText.h"
#include "service/PlannedClass.h"

namespace soca {

// Sets the edits of each conversion for a file of this encoding. `planned` must have the new lines
// that its conversions make together, and `conversions` be those of that class, made or not. A
// conversion stays without edits if it is not made, if it cannot be made alone, or if it takes too
// many plans to find out.
void findEditsOfEach(const PlannedClass& planned, fl::EncodingType encoding,
                     std::vector<Conversion>& conversions);

}  // namespace soca
