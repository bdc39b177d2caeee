// Hears which messages the catalog makes texts of: a finished text no longer shows its id.
#pragma once

#include <functional>

#include "platform/messages/BaseMsgID.h"
#include "platform/text/UString.h"

namespace fl::i18n {

// While it lives, its callback gets the message and the text of each text that the catalog makes on
// the thread that made the listener. Listeners nest: the innermost hears first, then those round
// it. While a callback runs, neither it nor an inner one hears of texts. To be destroyed on its own
// thread, inner ones first; what a callback throws reaches the caller of the catalog.
class MessageListener {
 public:
  using Callback = std::function<void(const resource_core::BaseMsgID&, const ustring& text)>;

  explicit MessageListener(Callback callback);
  ~MessageListener();
  MessageListener(const MessageListener&) = delete;
  MessageListener& operator=(const MessageListener&) = delete;

  // Tells the listeners of this thread; for the catalog.
  static void tell(const resource_core::BaseMsgID& message, const ustring& text);

 private:
  Callback callback_;
  MessageListener* outer_;
};

}  // namespace fl::i18n
