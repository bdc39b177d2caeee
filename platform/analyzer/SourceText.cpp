#include "platform/analyzer/SourceText.h"

#include <memory>

#include "platform/analyzer/NameHash.h"

namespace ca::astapi {

StringId::StringId(const fl::ustring& name) {
  auto owned = std::make_unique<internal::InternedName>();
  auto string = std::make_unique<const fl::ustring>(name);
  owned->text = string->data();
  owned->length = static_cast<std::uint32_t>(string->size());
  owned->hash = internal::hashName(*string);
  owned->owners = 1;
  owned->string = string.release();
  name_ = owned.release();
}

const fl::ustring& StringId::getString() const {
  static const fl::ustring empty;
  if (name_ == nullptr) return empty;
  if (const fl::ustring* made = name_->string.load(std::memory_order_acquire)) return *made;
  auto string = std::make_unique<const fl::ustring>(name_->view());
  const fl::ustring* current = nullptr;
  // Another thread may have been first.
  if (!name_->string.compare_exchange_strong(current, string.get())) return *current;
  return *string.release();
}

void StringId::addOwner() const { name_->owners.fetch_add(1, std::memory_order_relaxed); }

void StringId::removeOwner() const {
  if (name_->owners.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  delete name_->string.load(std::memory_order_relaxed);
  delete name_;
}

}  // namespace ca::astapi
