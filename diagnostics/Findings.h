// The messages of findings, which accompany the actions and do not end the call.
#pragma once

#include <initializer_list>

#include "platform/messages/BaseMsgID.h"
#include "platform/text/UString.h"

namespace soca {

// The message for a short id without a message class; the arguments are those of its placeholders.
resource_core::BaseMsgID makeMessage(const char* id, std::initializer_list<fl::ustring> arguments);

// The finished text of the message.
fl::ustring findingText(const resource_core::BaseMsgID& message);
fl::ustring findingText(const char* id, std::initializer_list<fl::ustring> arguments);

}  // namespace soca
