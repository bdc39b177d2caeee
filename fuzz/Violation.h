// A property that does not hold.
#pragma once

#include <fmt/format.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace soca::fuzz {

// `what` is the property and the place where it fails.
class Violation : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws a Violation with the formatted text unless the property holds.
template <class... Arguments>
void require(bool holds, fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  if (!holds) throw Violation(fmt::format(format, std::forward<Arguments>(arguments)...));
}

}  // namespace soca::fuzz
