#include "platform/messages/MessageListener.h"

#include <utility>

namespace fl::i18n {
namespace {

// The innermost listener of this thread whose callback is not running.
thread_local MessageListener* innermost = nullptr;

// Restores the innermost listener, also when a callback throws.
class Restore {
 public:
  explicit Restore(MessageListener* listener) : listener_(listener) {}
  ~Restore() { innermost = listener_; }
  Restore(const Restore&) = delete;
  Restore& operator=(const Restore&) = delete;

 private:
  MessageListener* listener_;
};

}  // namespace

MessageListener::MessageListener(Callback callback)
    : callback_(std::move(callback)), outer_(std::exchange(innermost, this)) {}

MessageListener::~MessageListener() { innermost = outer_; }

void MessageListener::tell(const resource_core::BaseMsgID& message, const ustring& text) {
  const Restore restore(innermost);
  for (MessageListener* listener = innermost; listener != nullptr; listener = listener->outer_) {
    innermost = listener->outer_;
    if (listener->callback_) listener->callback_(message, text);
  }
}

}  // namespace fl::i18n
