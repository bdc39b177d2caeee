// System calls that signals may interrupt.
#pragma once

#include <cerrno>

namespace fl::filesystem {

// The result of the call, repeated as long as it is -1 with EINTR.
template <class Call>
auto uninterrupted(const Call& call) {
  while (true) {
    const auto result = call();
    if (result >= 0 || errno != EINTR) return result;
  }
}

}  // namespace fl::filesystem
