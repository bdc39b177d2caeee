// Which characters make up names.
#pragma once

#include "platform/text/UString.h"

namespace fl {

// Whether the character is a letter: A-Z, a-z, and beyond ASCII what Unicode 15.0 calls an
// upper-case, lower-case, title-case, modifier or other letter.
bool isLetter(char32_t character);

// Whether `name` is a letter with letters, ASCII digits and `_` behind it. Keywords count.
bool isIdentifier(ustring_view name);

}  // namespace fl
