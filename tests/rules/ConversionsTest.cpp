// The text after any subset of the conversions of a class.
#include "rules/RuleConversion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/runtime/ClassTable.h"
#include "platform/text/Conversions.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

using fl::i18n::to_string;
using fl::i18n::to_ustring;

// The class C with this body.
class ClassText {
 public:
  explicit ClassText(const std::string& body, const std::string& superClasses = "velum.System")
      : overlay_(
            PathDispatcher::getDispatcher().classPath().front() + "/C.vlm",
            to_ustring("classdef (StrictDefaults) C < " + superClasses + "\n" + body + "end\n")) {}

  static PlannedClass plan() { return std::move(planActions(u"C", allFamilies, false).front()); }

 private:
  fl::filesystem::OverlayScope overlay_;
};

std::vector<std::string> idsOf(const PlannedClass& planned) {
  std::vector<std::string> ids;
  for (const fl::ustring& id : makeConversionIds(*planned.analysis, planned.conversions)) {
    ids.push_back(to_string(id));
  }
  return ids;
}

// The body of the class after the conversions with these ids.
std::string bodyAfter(const PlannedClass& planned, const std::string& made) {
  std::istringstream in(made);
  const std::vector<std::string> ids = idsOf(planned);
  std::vector<bool> chosen(ids.size());
  for (std::string id; in >> id;) {
    const auto found = std::ranges::find(ids, id);
    EXPECT_NE(found, ids.end()) << id;
    if (found != ids.end()) chosen[static_cast<std::size_t>(found - ids.begin())] = true;
  }
  const std::string text = to_string(planConversions(planned, chosen).text());
  const std::size_t start = text.find('\n') + 1;
  return text.substr(start, text.rfind("end\n") - start);
}

struct Row {
  const char* shows;
  const char* before;
  const char* made;
  const char* after;
};

constexpr const char* twoSets =
    "properties\nA = 'a';\nB = 'b';\nend\n"
    "properties (Constant)\nASet = velum.system.StringSet({'a'});\n"
    "BSet = velum.system.StringSet({'b'});\nend\n";
constexpr const char* setInLogical =
    "properties (Logical)\nF = true;\nA = 'a';\nend\n"
    "properties (Constant)\nASet = velum.system.StringSet({'a'});\nend\n";
constexpr const char* companionsInLogical =
    "properties\nA = 'a';\nB = 'b';\nend\n"
    "properties (Logical)\nASet = velum.system.StringSet({'a'});\n"
    "BSet = velum.system.StringSet({'b'});\nend\n";
constexpr const char* bothAttributes = "properties (PositiveInteger, Logical)\nN = 1;\nend\n";
constexpr const char* twoLogical =
    "properties (Logical)\nF = true;\nend\nproperties (Logical)\nG = true;\nend\n"
    "properties\nP = 1;\nend\n";
constexpr const char* emptyBlocks = "properties\nend\nproperties (Hidden)\nend\n";
constexpr const char* emptyBetween =
    "properties (~Logical)\nP = 1;\nend\nproperties\nend\nproperties\nQ = 1;\nend\n";
constexpr const char* companionBetween =
    "properties (~Logical)\nA = 'a';\nend\n"
    "properties (Hidden)\nASet = velum.system.StringSet({'a'});\nend\n"
    "properties\nQ = 1;\nend\n";
constexpr const char* falseAttribute =
    "properties (PositiveInteger = false)\nASet = velum.system.StringSet({'a'});\nend\n"
    "properties (PositiveInteger = false)\nN = 3;\nend\n"
    "properties (Access = private)\nA = 'a';\nend\n";
constexpr const char* emptyParentheses =
    "properties\nA = 'a';\nB = 'b';\nend\n"
    "properties\nBSet = velum.system.StringSet({'b'});\nend\n"
    "properties ()\nASet = velum.system.StringSet({'a'});\nend\n";
constexpr const char* deletedBetween =
    "properties\nA = 'a';\nend\n"
    "properties (Hidden)\nASet = velum.system.StringSet({'a'});\nend\n"
    "properties\nBSet = velum.system.StringSet({'b'});\nend\n"
    "properties (Access = private)\nB = 'b';\nend\n";
constexpr const char* joinedEarlier =
    "properties (Logical)\nF = true;\nend\n"
    "properties (Logical)\nA = 'a';\nASet = velum.system.StringSet({'a'});\nG\nend\n";
constexpr const char* methods =
    "methods (Access = protected)\n"
    "function f = isInputSizeLockedImpl(~, ~)\nf = false;\nend\n"
    "function f = isOutputSizeLockedImpl(~, ~)\nf = false;\nend\n"
    "function f = isInputDataTypeMutableImpl(~, ~)\nf = false;\nend\n"
    "end\n";

constexpr Row rows[] = {
    {"one of two companions in a block is deleted", twoSets, "attributes/string-set:A",
     "properties\nA (1, :) char {velum.system.mustBeMember(A, {'a'})} = 'a';\nB = 'b';\nend\n"
     "properties (Constant)\nBSet = velum.system.StringSet({'b'});\nend\n"},
    {"the block is deleted with both companions", twoSets,
     "attributes/string-set:A attributes/string-set:B",
     "properties\nA (1, :) char {velum.system.mustBeMember(A, {'a'})} = 'a';\n"
     "B (1, :) char {velum.system.mustBeMember(B, {'b'})} = 'b';\nend\n"},
    {"a set in a block that keeps its attribute", setInLogical, "attributes/string-set:A",
     "properties (Logical)\nF = true;\n"
     "A (1, :) char {velum.system.mustBeMember(A, {'a'})} = 'a';\nend\n"},
    {"a block that loses its attribute and keeps its set", setInLogical, "attributes/logical:F",
     "properties \nF (1, 1) logical = true;\nA (1, 1) logical = 'a';\nend\n"
     "properties (Constant)\nASet = velum.system.StringSet({'a'});\nend\n"},
    {"a block with only companions keeps its attribute", companionsInLogical,
     "attributes/string-set:B",
     "properties\nA = 'a';\nB (1, :) char {velum.system.mustBeMember(B, {'b'})} = 'b';\nend\n"
     "properties (Logical)\nASet = velum.system.StringSet({'a'});\nend\n"},
    {"the first of two attributes", bothAttributes, "attributes/positive-integer:N",
     "properties (Logical)\nN (1, 1) {mustBePositive, mustBeInteger} = 1;\nend\n"},
    {"the second of two attributes", bothAttributes, "attributes/logical:N",
     "properties (PositiveInteger)\nN (1, 1) logical = 1;\nend\n"},
    {"a block that keeps its attribute is not joined with the previous one", twoLogical,
     "attributes/logical:F",
     "properties \nF (1, 1) logical = true;\nend\nproperties (Logical)\nG = true;\nend\n"
     "properties\nP = 1;\nend\n"},
    {"a block that loses its attribute is joined with the next one only", twoLogical,
     "attributes/logical:G",
     "properties (Logical)\nF = true;\nend\nproperties \nG (1, 1) logical = true;\nP = 1;\nend\n"},
    {"all blocks lose their attributes and are joined", twoLogical,
     "attributes/logical:F attributes/logical:G",
     "properties \nF (1, 1) logical = true;\nG (1, 1) logical = true;\nP = 1;\nend\n"},
    {"one of two empty blocks", emptyBlocks, "attributes/empty-block:2", "properties\nend\n"},
    {"an empty block that stays separates its neighbours", emptyBetween, "attributes/logical:P",
     "properties \nP = 1;\nend\nproperties\nend\nproperties\nQ = 1;\nend\n"},
    {"a deleted empty block does not separate its neighbours", emptyBetween,
     "attributes/logical:P attributes/empty-block:1", "properties \nP = 1;\nQ = 1;\nend\n"},
    {"a block of companions that stays separates its neighbours", companionBetween,
     "attributes/logical:A",
     "properties \nA = 'a';\nend\n"
     "properties (Hidden)\nASet = velum.system.StringSet({'a'});\nend\n"
     "properties\nQ = 1;\nend\n"},
    {"a deleted block of companions does not separate its neighbours", companionBetween,
     "attributes/logical:A attributes/string-set:A",
     "properties \nA (1, :) char {velum.system.mustBeMember(A, {'a'})} = 'a';\nQ = 1;\nend\n"},
    {"a block of companions that stays keeps its attribute for itself", falseAttribute,
     "attributes/positive-integer:N",
     "properties (PositiveInteger = false)\nASet = velum.system.StringSet({'a'});\nend\n"
     "properties \nN = 3;\nend\nproperties (Access = private)\nA = 'a';\nend\n"},
    {"a block of companions that stays is not joined", emptyParentheses, "attributes/string-set:B",
     "properties\nA = 'a';\nB (1, :) char {velum.system.mustBeMember(B, {'b'})} = 'b';\nend\n"
     "properties ()\nASet = velum.system.StringSet({'a'});\nend\n"},
    {"nor is it across one that is deleted", deletedBetween, "attributes/string-set:A",
     "properties\nA (1, :) char {velum.system.mustBeMember(A, {'a'})} = 'a';\nend\n"
     "properties\nBSet = velum.system.StringSet({'b'});\nend\n"
     "properties (Access = private)\nB = 'b';\nend\n"},
    {"a changed block is not joined with one that keeps its attribute", joinedEarlier,
     "attributes/string-set:A",
     "properties (Logical)\nF = true;\nend\n"
     "properties (Logical)\nA (1, :) char {velum.system.mustBeMember(A, {'a'})} = 'a';\nG\nend\n"},
    {"only a rename", methods, "impl/rename-negate:isInputSizeLockedImpl",
     "methods (Access = protected)\n"
     "function f = isInputSizeMutableImpl(~, ~)\nf = true;\nend\n"
     "function f = isOutputSizeLockedImpl(~, ~)\nf = false;\nend\n"
     "function f = isInputDataTypeMutableImpl(~, ~)\nf = false;\nend\n"
     "end\n"},
    {"only the deletions of methods", methods,
     "impl/delete-obsolete:isOutputSizeLockedImpl "
     "impl/delete-redundant:isInputDataTypeMutableImpl",
     "methods (Access = protected)\n"
     "function f = isInputSizeLockedImpl(~, ~)\nf = false;\nend\n"
     "end\n"},
};

TEST(Conversions, ChangeOnlyTheirOwnText) {
  for (const Row& row : rows) {
    const ClassText text(row.before);
    const PlannedClass planned = ClassText::plan();
    EXPECT_EQ(bodyAfter(planned, row.made), row.after) << row.shows;
    EXPECT_EQ(bodyAfter(planned, ""), row.before) << row.shows;
  }
}

TEST(Conversions, KeepACompanionThatAnotherPropertyUses) {
  constexpr const char* set =
      R"("constrainedSet": {"kind": 1, "valueType": 1, "setProperty": "ASet", "values": ["a"]})";
  sotarn::setClassTable(std::make_shared<sotarn::ClassTable>(
      sotarn::parseClassTable(std::string(R"({"classes": {"C": {"properties": {"A": {)") + set +
                              R"(}, "B": {)" + set + "}}}}}")));
  {
    const ClassText text(
        "properties\nA = 'a';\nB = 'a';\nASet = velum.system.StringSet({'a'});\nend\n");
    const PlannedClass planned = ClassText::plan();
    const std::string a = "A (1, :) char {velum.system.mustBeMember(A, {'a'})} = 'a';\n";
    const std::string b = "B (1, :) char {velum.system.mustBeMember(B, {'a'})} = 'a';\n";
    const std::string companion = "ASet = velum.system.StringSet({'a'});\n";
    EXPECT_EQ(bodyAfter(planned, "attributes/string-set:A"),
              "properties\n" + a + "B = 'a';\n" + companion + "end\n");
    EXPECT_EQ(bodyAfter(planned, "attributes/string-set:A attributes/string-set:B"),
              "properties\n" + a + b + "end\n");
    // The last action deletes the companion.
    const auto owners = planned.ownersOf(planned.actions.size() - 1);
    EXPECT_EQ(owners.size(), 2U);
    EXPECT_EQ(planned.ownersOf(0).size(), 1U);
  }
  sotarn::setClassTable(nullptr);
}

TEST(Conversions, HaveIdsOfTheirSubjects) {
  const ClassText text(
      "properties (Logical)\nASet = velum.system.StringSet({'a'});\nF = true;\nend\n"
      "properties\nend\nproperties (PositiveInteger)\nF = 1;\nend\nproperties\nA = 'a';\nend\n"
      "methods (Access = protected)\nfunction processInputSizeChangeImpl(obj, x)\nend\n"
      "function processInputSizeChangeImpl(obj, x)\nend\nend\nproperties\nend\n",
      "velum.system.mixin.Propagates");
  const PlannedClass planned = ClassText::plan();
  EXPECT_EQ(idsOf(planned),
            (std::vector<std::string>{"attributes/logical:F~1", "attributes/empty-block:1",
                                      "attributes/positive-integer:F~2", "attributes/string-set:A",
                                      "attributes/empty-block:2", "mixins",
                                      "impl/rename:processInputSizeChangeImpl~1"}));
  std::string members;
  for (const RuleConversion& conversion : planned.conversions) {
    for (const Member& member : findMembers(*planned.analysis, conversion)) {
      members += to_string(member.name) + ' ';
      EXPECT_EQ(member.extent.start.line, member.nameExtent.start.line);
    }
    members += std::to_string(findExtent(*planned.analysis, conversion).start.line) + '\n';
  }
  EXPECT_EQ(members, "ASet F 1\n5\nF 7\nASet A 11\n19\n0\nprocessInputSizeChangeImpl 14\n");
}

}  // namespace
}  // namespace soca
