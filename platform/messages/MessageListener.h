// Receives the messages of which the catalog makes texts: a finished text no longer shows its id.
#pragma once

#include <functional>

#include "platform/messages/BaseMsgID.h"
#include "platform/text/UString.h"

namespace fl::i18n {

// During its life, its callback receives the message and the text of each text that the catalog
// makes on the thread that made the listener. Listeners nest: the innermost is called first, then
// the outer ones. While a callback runs, neither it nor an inner one is called. To be destroyed on
// its own thread, inner ones first; an exception of a callback reaches the caller of the catalog.
class MessageListener {
 public:
  using Callback = std::function<void(const resource_core::BaseMsgID&, const ustring& text)>;

  explicit MessageListener(Callback callback);
  ~MessageListener();
  MessageListener(const MessageListener&) = delete;
  MessageListener& operator=(const MessageListener&) = delete;

  // Notifies the listeners of this thread; for the catalog.
  static void tell(const resource_core::BaseMsgID& message, const ustring& text);

 private:
  Callback callback_;
  MessageListener* outer_;
};

}  // namespace fl::i18n
