// The functions of a text without syntax errors, which need not be parsed again.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/text/UString.h"

namespace ca {

// Where such a function is unchanged in another text, that text has no syntax error in it either.
// So the parser skips it there, and its body is parsed when somebody asks for it.
struct KnownFunctions {
  // From `function` through `end`, in code units; `end` is just after it.
  struct Range {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
  };

  // The text that has them; null if it is the one that is parsed.
  std::shared_ptr<const fl::ustring> text;
  // The functions that the methods blocks define, and those after the class, in the order of the
  // text.
  std::vector<Range> ranges;
};

}  // namespace ca
