#include "platform/failure/LegacyErrorChannel.h"

#include <memory>
#include <mutex>
#include <utility>

namespace foundation::core::except {
namespace {

struct Channel {
  std::mutex mutex;
  // Shared, so that a hook that is being called outlives its removal.
  std::shared_ptr<const LegacyErrorHook> hook = std::make_shared<const LegacyErrorHook>();
};

// Never destroyed, because threads may fail while the process exits.
Channel& channel() {
  static Channel& instance = *new Channel();
  return instance;
}

}  // namespace

LegacyErrorHook setLegacyErrorHook(LegacyErrorHook hook) {
  auto newHook = std::make_shared<const LegacyErrorHook>(std::move(hook));
  const std::lock_guard lock(channel().mutex);
  return *std::exchange(channel().hook, std::move(newHook));
}

void raiseInLegacyErrorChannel(const IMsgIDException& exception) {
  std::shared_ptr<const LegacyErrorHook> hook;
  {
    const std::lock_guard lock(channel().mutex);
    hook = channel().hook;
  }
  if (*hook) (*hook)(exception);
}

}  // namespace foundation::core::except
