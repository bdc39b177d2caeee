// The string type of all names and source texts.
#pragma once

#include <string>
#include <string_view>

namespace fl {

// A string of UTF-16 code units.
using ustring = std::u16string;
using ustring_view = std::u16string_view;

}  // namespace fl
