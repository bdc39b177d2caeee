#include "platform/messages/MessageCatalog.h"

#include <cstddef>
#include <string>
#include <variant>

#include "MessageTable.h"
#include "platform/text/Conversions.h"

namespace fl::i18n {
namespace {

using resource_core::BaseMsgID;

const CatalogEntry* findEntry(const BaseMsgID& message) {
  if (message.catalog != catalogName) return nullptr;
  for (const CatalogEntry& entry : catalogEntries) {
    if (entry.id == message.id) return &entry;
  }
  return nullptr;
}

struct ArgumentText {
  ustring operator()(long number) const { return to_ustring(std::to_string(number)); }
  ustring operator()(const std::string& text) const { return to_ustring(text); }
  ustring operator()(const ustring& text) const { return text; }
};

// Whether `{digit}` is at `index`, for an argument that exists.
bool isPlaceholder(ustring_view pattern, std::size_t index, std::size_t argumentCount) {
  if (index + 2 >= pattern.size() || pattern[index] != u'{' || pattern[index + 2] != u'}') {
    return false;
  }
  const char16_t digit = pattern[index + 1];
  return digit >= u'0' && digit <= u'9' && static_cast<std::size_t>(digit - u'0') < argumentCount;
}

// Fills the placeholders in one pass, so that a `{0}` inside an argument is not replaced.
ustring fillIn(ustring_view pattern, const BaseMsgID& message) {
  ustring text;
  std::size_t start = 0;
  for (std::size_t i = pattern.find(u'{'); i != ustring_view::npos; i = pattern.find(u'{', i + 1)) {
    if (!isPlaceholder(pattern, i, message.arguments.size())) continue;
    text += pattern.substr(start, i - start);
    text += std::visit(ArgumentText(), message.arguments[pattern[i + 1] - u'0']);
    start = i + 3;
  }
  return text += pattern.substr(start);
}

// The text for a message without an entry: its id and its arguments.
ustring makeTextWithoutEntry(const BaseMsgID& message) {
  ustring text = u"Message '" + to_ustring(message.catalog + ":" + message.id) + u"'";
  const char16_t* separator = u": ";
  for (const auto& argument : message.arguments) {
    text += separator + std::visit(ArgumentText(), argument);
    separator = u", ";
  }
  return text;
}

}  // namespace

ustring MessageCatalog::get_message(const BaseMsgID& message, const Locale&) {
  const CatalogEntry* entry = findEntry(message);
  if (entry == nullptr) return makeTextWithoutEntry(message);
  return fillIn(to_ustring(entry->text), message);
}

}  // namespace fl::i18n
