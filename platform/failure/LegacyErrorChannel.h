// The older way in which failures reach a host: a hook that is told of each exception with a
// message id before it is thrown.
#pragma once

#include <functional>

#include "platform/failure/Exception.h"

namespace foundation::core::except {

// May leave by an exception of its own, which then takes the place of the one that it was told of.
// It is called on the thread that fails, from several threads at once.
using LegacyErrorHook = std::function<void(const IMsgIDException&)>;

// Sets the hook of the process, in place of the one before; an empty one for none. Returns the old
// one.
LegacyErrorHook setLegacyErrorHook(LegacyErrorHook hook);

// Tells the hook, and returns if there is none or if it returns.
void raiseInLegacyErrorChannel(const IMsgIDException& exception);

}  // namespace foundation::core::except
