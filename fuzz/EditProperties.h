// What holds of edits of any text.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/text/UString.h"

namespace soca::fuzz {

// One edit in numbers that mean something for any text: they are taken modulo what there is.
struct RawEdit {
  std::uint8_t line = 0;
  std::uint8_t column = 0;
  // How many lines and columns the end is behind the start.
  std::uint8_t lines = 0;
  std::uint8_t columns = 0;
  // Which of some texts is put in.
  std::uint8_t text = 0;
  // The options of SourceFile::replace.
  std::uint8_t options = 0;
};

// Makes the edits on a SourceFile of the text. Throws a Violation unless all of this holds:
// - without an edit the text is the same, less a last line that is blank or a continuation;
// - whatever the edits, lines keep their numbers, and only an edit that begins behind its line
// fails;
// - edits on different lines give one text in any order, in which all is as it was but for them.
void checkEdits(const fl::ustring& text, const std::vector<RawEdit>& edits);

}  // namespace soca::fuzz
