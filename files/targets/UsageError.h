// A fault of the command line.
#pragma once

#include <stdexcept>

namespace soca {

// A command line that is not valid, or that names something that does not exist.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace soca
