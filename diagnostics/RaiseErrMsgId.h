// Raises a message as an exception.
#pragma once

#include <exception>

#include "platform/failure/Exception.h"
#include "platform/failure/LegacyErrorChannel.h"

namespace soca {

// Calls the legacy error channel, then throws `Exception<T, std::exception, void>` with a copy of
// the message. Never returns; the channel may throw another exception instead.
template <class T>
[[noreturn]] void raiseErrMsgId(const T& message) {
  const foundation::core::except::Exception<T, std::exception, void> exception(message);
  foundation::core::except::raiseInLegacyErrorChannel(exception);
  exception.rethrow();
}

}  // namespace soca
