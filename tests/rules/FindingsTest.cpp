// The subjects, conversions and places of findings.
#include "rules/RuleFinding.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

using fl::i18n::to_string;

// The text of the extent, which is on one line.
std::string textAt(const PlannedClass& planned, const Extent& extent) {
  const SourceFile file(*planned.oldText);
  const fl::ustring_view line = file.getLines()[extent.start.line].text;
  return to_string(line.substr(extent.start.column, extent.end.column - extent.start.column));
}

// One line for each finding: `kind member [conversion]: place place`.
std::string describe(const PlannedClass& planned) {
  constexpr std::string_view names[] = {"attribute", "companion", "default", "getter",   "use",
                                        "other",     "signature", "access",  "reference"};
  std::string text;
  const auto places = planned.findPlaces();
  for (std::size_t i = 0; i < places.size(); ++i) {
    const RuleFinding& finding = planned.findings[i];
    text += std::string(conversionKind(finding.kind).name) + ' ' +
            textAt(planned, planned.memberOf(finding).nameExtent);
    if (finding.conversion != noConversion) text += " [" + std::to_string(finding.conversion) + "]";
    text += ':';
    for (const FindingPlace& place : places[i]) {
      text += ' ' + std::string(names[static_cast<std::size_t>(place.type)]) + " '" +
              textAt(planned, place.extent) + "'";
    }
    text += '\n';
  }
  return text;
}

struct Row {
  const char* shows;
  const char* body;
  const char* findings;
};

constexpr Row rows[] = {
    {"an abstract property", "properties (Hidden, Abstract, Logical)\nF\nend\n",
     "attributes/logical F: attribute 'Abstract'\n"},
    {"a property without a default value", "properties (PositiveInteger)\nN\nend\n",
     "attributes/positive-integer N:\n"},
    {"a companion with a get method",
     "properties\nA = 'a';\nASet = velum.system.StringSet({'a'});\nend\n"
     "methods\nfunction v = get.ASet(obj)\nv = obj.ASet;\nend\nend\n",
     "attributes/string-set A: companion 'ASet' getter 'get.ASet'\n"},
    {"a companion with an indirect default that is used",
     "properties\nA = 'a';\nASet = velum.system.StringSet(f('a'));\nend\n"
     "methods\nfunction f(obj)\nobj.ASet;\nend\nend\n",
     "attributes/string-set A: companion 'ASet' default 'velum.system.StringSet(f('a'))'\n"
     "attributes/string-set A: companion 'ASet' use 'ASet'\n"},
    {"a method with the new name",
     "methods (Access = protected)\nfunction f = isInputSizeLockedImpl(~, ~)\nend\n"
     "f = isInputSizeMutableImpl(obj, x)\nend\n",
     "impl/rename-negate isInputSizeLockedImpl: other 'isInputSizeMutableImpl'\n"},
    {"another signature and access",
     "methods (Access = private)\nfunction processInputSizeChangeImpl(obj)\nend\nend\n",
     "impl/rename processInputSizeChangeImpl: access 'methods (Access = private)' "
     "signature 'function processInputSizeChangeImpl(obj'\n"},
    {"the same signature and another access",
     "methods\nfunction f = isOutputSizeLockedImpl(obj, x)\nend\nend\n",
     "impl/delete-obsolete isOutputSizeLockedImpl: access 'methods'\n"},
    {"another signature and the same access",
     "methods (Access = protected)\nfunction f = isInputDataTypeMutableImpl\nend\nend\n",
     "impl/delete-redundant isInputDataTypeMutableImpl: "
     "signature 'function f = isInputDataTypeMutableImpl'\n"},
    {"references to a deleted method",
     "methods (Access = protected)\nfunction g(obj)\nisOutputSizeLockedImpl(obj, 1);\nend\n"
     "function f = isOutputSizeLockedImpl(obj, x)\nend\n"
     "function h(obj)\nx = @isOutputSizeLockedImpl;\nend\nend\n",
     "impl/delete-obsolete isOutputSizeLockedImpl [0]: reference 'isOutputSizeLockedImpl' "
     "reference 'isOutputSizeLockedImpl'\n"},
    {"a reference that prevents the deletion",
     "methods (Access = protected)\nfunction f = isInputDataTypeMutableImpl(obj, x)\n"
     "f = false;\nend\nfunction h(obj)\nisInputDataTypeMutableImpl(obj, 1);\nend\nend\n",
     "impl/delete-redundant isInputDataTypeMutableImpl: reference 'isInputDataTypeMutableImpl'\n"},
};

TEST(Findings, HaveSubjectsAndPlaces) {
  for (const Row& row : rows) {
    const fl::filesystem::OverlayScope overlay(
        PathDispatcher::getDispatcher().classPath().front() + "/C.vlm",
        fl::i18n::to_ustring("classdef C < velum.System\n" + std::string(row.body) + "end\n"));
    const PlannedClass planned = std::move(planUpdate(u"C", allFamilies, false).front());
    EXPECT_EQ(describe(planned), row.findings) << row.shows;
    EXPECT_EQ(planned.findings.size(), planned.result.messages.size()) << row.shows;
    // Without conversions, there are no findings that result from them.
    for (const RuleFinding& finding :
         planConversions(planned, std::vector<bool>(planned.conversions.size())).findings) {
      EXPECT_EQ(finding.conversion, noConversion) << row.shows;
    }
  }
}

}  // namespace
}  // namespace soca
