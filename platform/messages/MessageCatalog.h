// The texts of messages.
#pragma once

#include "platform/messages/BaseMsgID.h"
#include "platform/text/Locale.h"
#include "platform/text/UString.h"

namespace fl::i18n {

class MessageCatalog {
 public:
  // The text of the message with its arguments filled in. An id that is not in the catalog gives a
  // text that names the id and the arguments.
  static ustring get_message(const resource_core::BaseMsgID& message, const Locale& locale);
};

}  // namespace fl::i18n
