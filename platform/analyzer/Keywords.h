// Recognises the keywords.
#pragma once

#include "platform/analyzer/Token.h"
#include "platform/text/UString.h"

namespace ca {

// The keyword that `name` is, or TokenKind::Identifier.
TokenKind keywordOrIdentifier(fl::ustring_view name);

}  // namespace ca
