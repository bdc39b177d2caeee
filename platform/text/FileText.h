// The text of a file and the bytes that it stands in.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace fl {

enum class EncodingType { utf8, latin1 };

struct DecodedText {
  ustring text;
  EncodingType encoding = EncodingType::utf8;
};

// The text of a file's bytes, with every character: line ends, NUL and a U+FEFF in front stay.
// Bytes that are not UTF-8 throughout are read as ISO-8859-1, from the first one on; an overlong
// form and an encoded surrogate are no UTF-8.
DecodedText decodeFileText(std::string_view bytes);

// The bytes that decode to `text`; nothing when there are none: unpaired surrogates in UTF-8,
// characters above U+00FF in ISO-8859-1.
std::optional<std::string> encodeFileText(ustring_view text, EncodingType encoding);

}  // namespace fl
