// One attribute of a block's opening line, as text.
#pragma once

#include <optional>

#include "platform/text/UString.h"

namespace soca {

struct AttributeText {
  fl::ustring name;
  // The written value, with the quotes of a literal; empty for a bare name.
  std::optional<fl::ustring> value;
  // Written with a leading `~`.
  bool negated = false;

  friend bool operator==(const AttributeText&, const AttributeText&) = default;
};

}  // namespace soca
