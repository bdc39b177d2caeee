#include "diagnostics/Findings.h"

#include "diagnostics/Messages.h"
#include "platform/messages/MessageCatalog.h"
#include "platform/text/Locale.h"

namespace soca {

fl::ustring findingText(const resource_core::BaseMsgID& message) {
  return fl::i18n::MessageCatalog::get_message(message, fl::i18n::Locale::global());
}

fl::ustring findingText(const char* id, std::initializer_list<fl::ustring> arguments) {
  resource_core::BaseMsgID message;
  message.arguments.assign(arguments.begin(), arguments.end());
  message.catalog = VELUM::system::Analyzer::catalogName;
  message.id = id;
  return findingText(message);
}

}  // namespace soca
