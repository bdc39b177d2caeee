// Text with escapes for what a terminal would obey instead of showing it.
#pragma once

#include <string>
#include <string_view>

namespace soca {

// Whether the character controls a terminal, ends a line, or overrides the order of the characters
// around it, so that a reader would see another text than the one that is there.
bool isUnsafe(char32_t character);

// Unsafe characters become `\u001b`, which is an escape in JSON too, and bytes that are not UTF-8
// become `\x9b`. Line ends and tabs stay.
std::string withEscapes(std::string_view text);

// The same for a name, or a message of one line: it has no line end and no tab.
std::string withEscapesInLine(std::string_view line);

}  // namespace soca
