// The texts of messages.
#pragma once

#include "platform/messages/BaseMsgID.h"
#include "platform/text/Locale.h"
#include "platform/text/UString.h"

namespace fl::i18n {

class MessageCatalog {
 public:
  // The text of the message with its arguments filled in, and tells the listeners of this thread.
  // An id that the catalog does not have gives a text that names the id and the arguments.
  static ustring get_message(const resource_core::BaseMsgID& message, const Locale& locale);

  // The same, of which no listener hears.
  static ustring makeText(const resource_core::BaseMsgID& message);
};

}  // namespace fl::i18n
