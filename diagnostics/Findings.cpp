#include "diagnostics/Findings.h"

#include "diagnostics/Messages.h"
#include "platform/messages/MessageCatalog.h"
#include "platform/text/Locale.h"

namespace soca {

fl::ustring findingText(const resource_core::BaseMsgID& message) {
  return fl::i18n::MessageCatalog::get_message(message, fl::i18n::Locale::global());
}

resource_core::BaseMsgID makeMessage(const char* id, std::initializer_list<fl::ustring> arguments) {
  resource_core::BaseMsgID message;
  message.arguments.assign(arguments.begin(), arguments.end());
  message.catalog = VELUM::system::Analyzer::catalogName;
  message.id = id;
  return message;
}

fl::ustring findingText(const char* id, std::initializer_list<fl::ustring> arguments) {
  return findingText(makeMessage(id, arguments));
}

}  // namespace soca
