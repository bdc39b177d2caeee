#include "platform/text/Conversions.h"

#include "platform/text/Utf8.h"

namespace fl::i18n {

std::string to_string(ustring_view text) {
  return utf8::encodeText(text, utf8::FaultType::replace).value_or(std::string());
}

ustring to_ustring(std::string_view bytes) {
  ustring text(bytes.size(), u'\0');
  text.resize(utf8::decodeText(bytes, utf8::FaultType::replace, text.data()).value_or(0));
  return text;
}

}  // namespace fl::i18n
