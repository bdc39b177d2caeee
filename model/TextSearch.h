// Searches in the text of a file.
#pragma once

#include <cstddef>

#include "platform/text/UString.h"

namespace soca {

// The place behind the first occurrence of "." followed by `name`, or npos. Made for a class in
// which many names are looked for, most of which do not occur: it does not look at every character.
std::size_t findBehindDot(fl::ustring_view text, fl::ustring_view name);

}  // namespace soca
