// Raises a message as an exception.
#pragma once

#include <exception>

#include "platform/failure/Exception.h"
#include "platform/failure/LegacyErrorChannel.h"

namespace soca {

// Throws `Exception<T, std::exception, void>` over a copy of the message, once the legacy error
// channel was told. Never returns; the channel may throw something else in its place.
template <class T>
[[noreturn]] void raiseErrMsgId(const T& message) {
  const foundation::core::except::Exception<T, std::exception, void> exception(message);
  foundation::core::except::raiseInLegacyErrorChannel(exception);
  exception.rethrow();
}

}  // namespace soca
