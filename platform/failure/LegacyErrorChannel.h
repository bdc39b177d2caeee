// The older way in which failures reach a host: a hook that is called with each exception with a
// message id before it is thrown.
#pragma once

#include <functional>

#include "platform/failure/Exception.h"

namespace foundation::core::except {

// May throw an exception of its own, which then replaces the one that it was called with. Called on
// the thread that fails, so possibly on several threads at once.
using LegacyErrorHook = std::function<void(const IMsgIDException&)>;

// Sets the hook of the process in place of the previous one, and returns that; an empty hook
// removes it.
LegacyErrorHook setLegacyErrorHook(LegacyErrorHook hook);

// Calls the hook, and returns if there is none or if it returns.
void raiseInLegacyErrorChannel(const IMsgIDException& exception);

}  // namespace foundation::core::except
