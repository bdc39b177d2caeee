#include "conversions/risk/Reasons.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "platform/text/Conversions.h"

namespace soca {

void addReason(RiskType type, ConversionReason reason, ConversionRisk& risk) {
  risk.type = std::max(risk.type, type);
  risk.reasons.push_back(std::move(reason));
}

std::string listOf(const std::vector<std::string>& items) {
  constexpr std::size_t mostItems = 8;
  std::string list;
  for (std::size_t i = 0; i < std::min(items.size(), mostItems); ++i) {
    if (i > 0) list += i + 1 == items.size() ? " and " : ", ";
    list += items[i];
  }
  if (items.size() > mostItems) list += fmt::format(" and {} more", items.size() - mostItems);
  return list;
}

std::string shortened(fl::ustring_view text) {
  constexpr std::size_t mostUnits = 40;
  const std::size_t length = std::min(text.find(u'\n'), mostUnits);
  const std::string start = fl::i18n::to_string(text.substr(0, length));
  return length >= text.size() || start.ends_with("...") ? start : start + "...";
}

}  // namespace soca
