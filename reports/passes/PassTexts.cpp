#include "reports/passes/PassTexts.h"

#include <cstring>
#include <ranges>
#include <string>
#include <string_view>

namespace soca {

void PassTexts::put(std::size_t number, unsigned pass, const fl::ustring& text) {
  const std::lock_guard lock(mutex_);
  const auto* bytes = reinterpret_cast<const char*>(text.data());
  const Spool::Place place = spool_.put({bytes, text.size() * sizeof(char16_t)});
  texts_[number].push_back({pass, place, {}});
}

PassTexts::Text PassTexts::get(std::size_t number, unsigned pass) {
  const std::lock_guard lock(mutex_);
  const auto entry = texts_.find(number);
  if (entry == texts_.end()) return nullptr;
  for (Stored& stored : entry->second | std::views::reverse) {
    if (stored.pass > pass) continue;
    Text text = stored.text.lock();
    if (text != nullptr) return text;
    const std::string bytes = spool_.take(stored.place);
    fl::ustring read(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(read.data(), bytes.data(), bytes.size());
    text = std::make_shared<const fl::ustring>(std::move(read));
    stored.text = text;
    if (recent_.size() < mostInMemory) recent_.resize(mostInMemory);
    recent_[nextRecent_++ % mostInMemory] = text;
    return text;
  }
  return nullptr;
}

}  // namespace soca
