// The letters of names.
#pragma once

#include "platform/text/UString.h"

namespace fl {

// Whether the character is a letter: A-Z, a-z, and beyond ASCII the upper-case, lower-case,
// title-case, modifier and other letters of Unicode 15.0.
bool isLetter(char32_t character);

// Whether `name` is a letter followed by letters, ASCII digits and `_`. Keywords are identifiers.
bool isIdentifier(ustring_view name);

}  // namespace fl
