#include "reports/passes/PassTexts.h"

#include <cstring>
#include <ranges>

namespace soca {

Spool::Place PassTexts::store(fl::ustring_view text) {
  const auto* bytes = reinterpret_cast<const char*>(text.data());
  return store(std::string_view(bytes, text.size() * sizeof(char16_t)));
}

Spool::Place PassTexts::store(std::string_view bytes) {
  const std::lock_guard lock(mutex_);
  return spool_.put(bytes);
}

std::string PassTexts::take(const Spool::Place& place) {
  const std::lock_guard lock(mutex_);
  return spool_.take(place);
}

void PassTexts::set(std::size_t number, unsigned pass, const Spool::Place& text) {
  const std::lock_guard lock(mutex_);
  texts_[number].push_back({pass, text, {}});
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
