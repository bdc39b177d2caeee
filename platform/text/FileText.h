// The text of a file and its encoding in bytes.
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

// The text of a file's bytes with every character: line ends, NUL and a leading U+FEFF stay. If any
// byte is not UTF-8, the whole file is read as ISO-8859-1; an overlong form and an encoded
// surrogate are not UTF-8.
DecodedText decodeFileText(std::string_view bytes);

// The bytes that decode to `text`; empty if there are none: for unpaired surrogates in UTF-8, and
// for characters above U+00FF in ISO-8859-1.
std::optional<std::string> encodeFileText(ustring_view text, EncodingType encoding);

}  // namespace fl
