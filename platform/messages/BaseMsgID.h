// A message as a value: an id in a catalog, and the arguments for the placeholders of its text.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "platform/text/UString.h"

namespace resource_core {

struct BaseMsgID {
  // One for each placeholder of the text, in the order of the placeholders. 8-bit strings are
  // UTF-8.
  std::vector<std::variant<long, std::string, fl::ustring>> arguments;
  std::string catalog;
  // The short id, unique in its catalog.
  std::string id;

  friend bool operator==(const BaseMsgID&, const BaseMsgID&) = default;
};

}  // namespace resource_core
