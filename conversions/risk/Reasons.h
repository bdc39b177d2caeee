// Texts of reasons, and their order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "conversions/risk/Risk.h"
#include "platform/text/UString.h"

namespace soca {

// Adds a reason that a conversion has this risk. The most risky reasons must be added first.
void addReason(RiskType type, ConversionReason reason, ConversionRisk& risk);

// "A, B and 3 more", where more than eight items are not all listed.
std::string listOf(const std::vector<std::string>& items);

// The first line of a text in UTF-8, shortened if it is long.
std::string shortened(fl::ustring_view text);

}  // namespace soca
