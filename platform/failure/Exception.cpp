#include "platform/failure/Exception.h"

#include "platform/messages/MessageCatalog.h"
#include "platform/text/Conversions.h"
#include "platform/text/Locale.h"

namespace foundation::core::except {
namespace {

std::string describe(const resource_core::BaseMsgID& message) {
  const auto text = fl::i18n::MessageCatalog::get_message(message, fl::i18n::Locale::global());
  return IMsgIDException::get_error_id(message) + ": " + fl::i18n::to_string(text);
}

}  // namespace

const char* IException::what() const noexcept { return what_.c_str(); }

fl::ustring IException::convert_str(const fl::ustring& text) const { return text; }

fl::ustring IException::convert_str(const std::string& text) const {
  return fl::i18n::to_ustring(text);
}

fl::ustring IException::ToUstringImpl() const { return convert_str(what_); }

IMsgIDException::IMsgIDException(const resource_core::BaseMsgID& message)
    : IException(describe(message)) {}

fl::ustring IMsgIDException::GetUnicodeMessageTxt() const {
  return fl::i18n::MessageCatalog::get_message(GetBaseMsgIDObj(), fl::i18n::Locale::global());
}

std::string IMsgIDException::get_error_id(const resource_core::BaseMsgID& message) {
  return message.catalog + ":" + message.id;
}

}  // namespace foundation::core::except
