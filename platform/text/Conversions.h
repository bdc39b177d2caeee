// Conversions between 16-bit strings and UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace fl::i18n {

// The text in UTF-8. An unpaired surrogate becomes U+FFFD.
std::string to_string(ustring_view text);

// The text of `bytes` in UTF-8. Invalid bytes become U+FFFD, one for each longest prefix of a
// character.
ustring to_ustring(std::string_view bytes);

}  // namespace fl::i18n
