// Between the 16-bit strings of names and texts and 8-bit strings in UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace fl::i18n {

// The text in UTF-8. An unpaired surrogate becomes U+FFFD.
std::string to_string(ustring_view text);

// The text that stands in `bytes` as UTF-8. What is no UTF-8 becomes U+FFFD, once for each longest
// beginning of a character.
ustring to_ustring(std::string_view bytes);

}  // namespace fl::i18n
