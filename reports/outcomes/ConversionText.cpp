#include "reports/outcomes/ConversionText.h"

#include <fmt/core.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "reports/explanations/MessageExplanations.h"
#include "reports/text/TextLayout.h"

namespace soca {
namespace {

// The largest number of lines that a text lists.
constexpr std::size_t mostLines = 8;

// "property 'Gain'", or the properties of its block.
std::string propertiesOf(const Conversion& conversion) {
  if (conversion.message == "properties") {
    return fmt::format("the properties {}", conversion.arguments.front());
  }
  return fmt::format("property '{}'", conversion.member);
}

// "line 12", "lines 12, 14 and 40"; of many lines the first ones, and how many more there are,
// `further` of which are not in the list. The lines must be in order; equal ones count once.
std::string listLines(std::vector<std::uint64_t> lines, std::size_t further) {
  lines.erase(std::ranges::unique(lines).begin(), lines.end());
  const std::size_t shown = std::min(lines.size(), mostLines);
  const std::size_t more = lines.size() - shown + further;
  std::string text =
      fmt::format("line{} {}", lines.size() + further == 1 ? "" : "s", lines.front());
  for (std::size_t i = 1; i < shown; ++i) {
    text += fmt::format("{}{}", i + 1 == shown && more == 0 ? " and " : ", ", lines[i]);
  }
  if (more > 0) text += fmt::format(" and {} more", groupDigits(more));
  return text;
}

// "line 12", "lines 12 to 14", "lines 12 to 14 and 16"; of many the first ones, as above.
std::string listRanges(const std::vector<std::uint64_t>& lines) {
  std::vector<std::string> ranges;
  for (std::size_t i = 0; i < lines.size();) {
    std::size_t last = i;
    while (last + 1 < lines.size() && lines[last + 1] <= lines[last] + 1) ++last;
    ranges.push_back(lines[i] == lines[last] ? fmt::format("{}", lines[i])
                                             : fmt::format("{} to {}", lines[i], lines[last]));
    i = last + 1;
  }
  const std::string noun = lines.front() == lines.back() ? "line" : "lines";
  if (ranges.size() > mostLines) {
    const std::size_t more = ranges.size() - mostLines;
    ranges.resize(mostLines);
    return fmt::format("{} {} and {} more", noun, fmt::join(ranges, ", "), groupDigits(more));
  }
  std::string text = fmt::format("{} {}", noun, ranges.front());
  for (std::size_t i = 1; i < ranges.size(); ++i) {
    text += fmt::format("{}{}", i + 1 == ranges.size() ? " and " : ", ", ranges[i]);
  }
  return text;
}

// A place that is not in the text is omitted.
void addLine(const RelatedPlace& place, LinesType lines, std::vector<std::uint64_t>& numbers) {
  const std::uint64_t line = lines == LinesType::updated ? place.newPlace.line : place.line;
  if (line > 0) numbers.push_back(line);
}

bool isMethod(const Conversion& conversion) {
  return conversionKind(conversion.kind).family == RuleFamilyType::impl;
}

std::string nameOf(const Conversion& conversion) {
  return fmt::format("method '{}'", conversion.member);
}

// "renamed to 'g'"
std::string pastOf(const Conversion& conversion) {
  if (conversion.kind == ConversionKindType::emptyBlock) return "deleted";
  if (!isMethod(conversion)) return "converted";
  const bool isRenamed = conversion.kind == ConversionKindType::rename ||
                         conversion.kind == ConversionKindType::renameNegate;
  if (!isRenamed) return "deleted";
  return fmt::format("renamed to '{}'", conversion.arguments.back());
}

// Without the line at which the text is shown.
std::string describeReason(const ConversionReason& reason, LinesType lines, std::uint64_t ownLine) {
  std::vector<std::uint64_t> numbers;
  for (const RelatedPlace& place : reason.places) addLine(place, lines, numbers);
  std::erase(numbers, ownLine);
  if (numbers.empty()) return reason.detail;
  return fmt::format("{} ({})", reason.detail, listLines(std::move(numbers), 0));
}

}  // namespace

std::string subjectOf(const Conversion& conversion) {
  switch (conversion.kind) {
    case ConversionKindType::positiveInteger:
      return "the attribute PositiveInteger of " + propertiesOf(conversion);
    case ConversionKindType::logical:
      return "the attribute Logical of " + propertiesOf(conversion);
    case ConversionKindType::stringSet:
      return fmt::format("the set of property '{}'", conversion.member);
    case ConversionKindType::emptyBlock:
      return "an empty properties block";
    case ConversionKindType::mixins:
      return "the list of superclasses";
    case ConversionKindType::rename:
    case ConversionKindType::renameNegate:
    case ConversionKindType::deleteObsolete:
    case ConversionKindType::deleteRedundant:
      break;
  }
  return fmt::format("{}, to be {}", nameOf(conversion), pastOf(conversion));
}

std::string describeReason(const ConversionReason& reason, LinesType lines) {
  return describeReason(reason, lines, 0);
}

std::string describeLeftOut(const Conversion& conversion, const ConversionReason& reason,
                            LinesType lines) {
  const std::uint64_t ownLine =
      lines == LinesType::updated ? conversion.newPlace.line : conversion.place.start.line + 1;
  const std::string why = describeReason(reason, lines, ownLine);
  return fmt::format("{} is not {}{}{}",
                     isMethod(conversion) ? nameOf(conversion) : subjectOf(conversion),
                     pastOf(conversion), why.empty() ? "" : ": ", why);
}

std::string describeLayout(const Conversion& conversion, const ConversionReason& layout,
                           LinesType lines) {
  std::vector<std::uint64_t> numbers;
  for (const RelatedPlace& place : layout.places) addLine(place, lines, numbers);
  return fmt::format("{} laid apart for {}", numbers.empty() ? "lines" : listRanges(numbers),
                     isMethod(conversion) ? nameOf(conversion) : subjectOf(conversion));
}

std::string adviceOn(const ConversionReason& reason) {
  // Its detail names what to do with just this superclass.
  if (reason.id == "soca:SuperClassUnresolved") return {};
  const MessageExplanation* explanation = findMessageExplanation(reason.id);
  if (explanation == nullptr) return {};
  const std::string_view fix = explanation->fix;
  const std::size_t end = fix.find(". ");
  return std::string(end == std::string_view::npos ? fix : fix.substr(0, end + 1));
}

std::string detailOf(const Finding& finding, LinesType lines) {
  if (!finding.detail.empty()) return finding.detail;
  std::map<std::string_view, std::vector<std::uint64_t>> linesByPhrase;
  for (const RelatedPlace& place : finding.related) {
    if (!place.phrase.empty()) addLine(place, lines, linesByPhrase[place.phrase]);
  }
  std::string detail;
  for (auto& [phrase, numbers] : linesByPhrase) {
    if (numbers.empty()) continue;
    detail += fmt::format("{}{} {}", detail.empty() ? "" : "; ", phrase,
                          listLines(std::move(numbers), finding.furtherLines));
  }
  return detail;
}

std::string describeFinding(const Finding& finding, LinesType lines) {
  const std::string detail = detailOf(finding, lines);
  if (detail.empty()) return finding.text;
  std::string_view text = finding.text;
  if (text.ends_with('.')) text.remove_suffix(1);
  return fmt::format("{}; {}", text, detail);
}

}  // namespace soca
