// The texts of findings, which accompany the actions and do not end the call.
#pragma once

#include <initializer_list>

#include "platform/messages/BaseMsgID.h"
#include "platform/text/UString.h"

namespace soca {

// The finished text of the message.
fl::ustring findingText(const resource_core::BaseMsgID& message);

// The same for a short id that has no message class; the arguments are those of its placeholders.
fl::ustring findingText(const char* id, std::initializer_list<fl::ustring> arguments);

}  // namespace soca
