#include "conversions/Findings.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

#include "platform/text/Conversions.h"
#include "rules/FindingPlaces.h"

namespace soca {
namespace {

std::string textOf(const std::variant<long, std::string, fl::ustring>& argument) {
  if (const auto* text = std::get_if<fl::ustring>(&argument)) return fl::i18n::to_string(*text);
  if (const auto* text = std::get_if<std::string>(&argument)) return *text;
  return std::to_string(std::get<long>(argument));
}

// How a place is described, and the words before the lines of such places. The signature and the
// access have a text of their own, and the companion is not what prevents the conversion.
struct PlaceTexts {
  std::string_view text;
  std::string_view phrase;
};

PlaceTexts textsOf(FindingPlaceType type) {
  switch (type) {
    case FindingPlaceType::abstractAttribute:
      return {"The attribute that makes it abstract.", "it is abstract in"};
    case FindingPlaceType::companion:
      return {"The set property.", {}};
    case FindingPlaceType::companionDefault:
      return {"The default value of the set property.", "the default value is in"};
    case FindingPlaceType::getMethod:
      return {"Its get method.", "the get method is in"};
    case FindingPlaceType::companionUse:
      return {"The use of the set property.", "used in"};
    case FindingPlaceType::otherMethod:
      return {"The method that has the new name.", "the other method is in"};
    case FindingPlaceType::signature:
      return {"The signature of the method.", {}};
    case FindingPlaceType::access:
      return {"The access of the method.", {}};
    case FindingPlaceType::reference:
      return {"A reference to the method.", "referred to in"};
  }
  return {};
}

void addPlaces(const std::vector<FindingPlace>& places, Finding& finding) {
  std::uint64_t lastLine = 0;
  for (const FindingPlace& place : places) {
    const LinePlace where = placeOf(place.extent);
    if (finding.related.size() < mostPlaces) {
      const PlaceTexts texts = textsOf(place.type);
      finding.related.push_back({where, std::string(texts.text), texts.phrase});
    } else if (where.line != lastLine) {
      ++finding.furtherLines;
    }
    lastLine = where.line;
  }
}

// --- what is expected, and what is there ---

std::string countOf(std::uint64_t count, std::string_view what) {
  if (count == 0) return fmt::format("no {}", what);
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string_view textOf(MethodAccessType access) {
  switch (access) {
    case MethodAccessType::publicAccess:
      return "public";
    case MethodAccessType::protectedAccess:
      return "protected";
    case MethodAccessType::privateAccess:
      return "private";
    case MethodAccessType::otherExpression:
      break;
  }
  return "an access that is an expression";
}

void append(std::string& list, std::string_view separator, std::string_view text) {
  if (!list.empty()) list += separator;
  list += text;
}

// "expected: protected, 2 inputs, 1 output; found: 1 input", where only what differs is found.
std::string describeSignature(const ca::AnalysisResult& analysis, const RuleFinding& finding) {
  const auto& method = static_cast<const ca::astapi::FunctionDefinition&>(*finding.member);
  const ExpectedSignature& expected = *finding.expected;
  const MethodAccessType access = accessOf(analysis, finding.member);
  const std::size_t inputs = method.inputs.size();
  const std::size_t outputs = method.outputs.size();
  std::string found;
  if (access != MethodAccessType::protectedAccess) append(found, ", ", textOf(access));
  if (expected.takesMoreInputs ? inputs < expected.inputs : inputs != expected.inputs) {
    append(found, ", ", countOf(inputs, "input"));
  }
  if (outputs != expected.outputs) append(found, ", ", countOf(outputs, "output"));
  return fmt::format("expected: protected, {}{}, {}; found: {}",
                     expected.takesMoreInputs ? "at least " : "", countOf(expected.inputs, "input"),
                     countOf(expected.outputs, "output"), found);
}

}  // namespace

std::vector<Finding> describeFindings(const PlannedClass& planned, FindingPlacesType places) {
  std::vector<Finding> findings;
  findings.reserve(planned.findings.size());
  for (const RuleFinding& known : planned.findings) {
    Finding& finding = findings.emplace_back();
    finding.id = known.message.id;
    finding.text = fl::i18n::to_string(planned.result.messages[findings.size() - 1]);
    if (places == FindingPlacesType::none) continue;
    std::ranges::transform(known.message.arguments, std::back_inserter(finding.arguments),
                           [](const auto& argument) { return textOf(argument); });
    static_cast<LinePlace&>(finding) = placeOfName(*planned.analysis, *known.memberName);
  }
  if (places != FindingPlacesType::related) return findings;
  const auto related = planned.findPlaces();
  for (std::size_t i = 0; i < related.size(); ++i) {
    addPlaces(related[i], findings[i]);
    if (planned.findings[i].expected == nullptr) continue;
    findings[i].detail = describeSignature(*planned.analysis, planned.findings[i]);
  }
  return findings;
}

}  // namespace soca
