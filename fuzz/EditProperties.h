// The properties of edits of any text.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/text/UString.h"

namespace soca::fuzz {

// One edit in numbers that are valid for any text, because they are taken modulo its sizes.
struct RawEdit {
  std::uint8_t line = 0;
  std::uint8_t column = 0;
  // The number of lines and columns from the start to the end.
  std::uint8_t lines = 0;
  std::uint8_t columns = 0;
  // The index of the text to insert.
  std::uint8_t text = 0;
  // The options of SourceFile::replace.
  std::uint8_t options = 0;
};

// Makes the edits on a SourceFile of the text. Throws a Violation unless all of this holds:
// - without an edit the text is the same, without a last line that is blank or a continuation;
// - for any edits, lines keep their numbers, and only an edit that begins after its line fails;
// - edits on different lines give the same text in any order, and change nothing else.
void checkEdits(const fl::ustring& text, const std::vector<RawEdit>& edits);

}  // namespace soca::fuzz
