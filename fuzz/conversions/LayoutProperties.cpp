#include "fuzz/conversions/LayoutProperties.h"

#include <algorithm>
#include <set>
#include <vector>

#include "conversions/choice/GuiltyConversions.h"
#include "conversions/layout/LineBreaks.h"
#include "conversions/layout/SameTree.h"
#include "fuzz/Violation.h"
#include "platform/analyzer/Analyzer.h"
#include "service/UpdatePlan.h"

namespace soca::fuzz {
namespace {

using Lines = std::set<std::uint64_t>;

fl::ustring withBreaks(fl::ustring text, const std::vector<LineBreak>& breaks) {
  for (auto each = breaks.rbegin(); each != breaks.rend(); ++each) {
    text.replace(each->offset, each->length, each->text);
  }
  return text;
}

fl::ustring withoutBlanks(fl::ustring text) {
  std::erase_if(text, [](char16_t c) {
    return fl::ustring_view(u"\t\n\v\f\r ,").find(c) != fl::ustring_view::npos;
  });
  return text;
}

}  // namespace

void checkLayout(const fl::ustring& text) {
  const auto before = ca::analyzeText(text);
  Lines lines;
  for (std::uint64_t line = 0; line <= text.size(); ++line) lines.insert(line);
  const auto breaks = findLineBreaks(*before, lines);
  const fl::ustring newText = withBreaks(text, breaks);
  const auto after = ca::analyzeText(newText);
  require(haveSameTree(*before, *after, breaks), "the lines that are laid apart have another tree");
  require(withoutBlanks(text) == withoutBlanks(newText), "a layout changes more than blanks");
  require(findLineBreaks(*after, lines).empty(), "lines can be laid apart once more");
}

fl::ustring layApart(const PlannedClass& planned, const std::vector<bool>& made) {
  const PlannedClass attempt =
      planConversions(planned, made, {.keepLines = true, .listFaults = true});
  Lines lines;
  for (const SelfMeeting& each : findSelfMeetings(attempt)) lines.insert(each.line);
  return withBreaks(*planned.oldText, findLineBreaks(*planned.analysis, lines));
}

}  // namespace soca::fuzz
