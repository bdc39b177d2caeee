#include "platform/analyzer/SourceText.h"

#include <memory>
#include <random>

namespace ca::astapi {

namespace internal {

const std::uint32_t nameHashSeed = std::random_device()();

std::uint32_t hashName(fl::ustring_view name) {
  std::uint32_t hash = nameHashSeed;
  for (const char16_t unit : name) hash = extendNameHash(hash, unit);
  return hash;
}

}  // namespace internal

StringId::StringId(const fl::ustring& name) {
  auto owned = std::make_unique<internal::InternedName>();
  owned->text = name;
  owned->hash = internal::hashName(name);
  owned->owners = 1;
  name_ = owned.release();
}

const fl::ustring& StringId::getString() const {
  static const fl::ustring empty;
  return name_ != nullptr ? name_->text : empty;
}

void StringId::share() const {
  if (name_ == nullptr || name_->owners == internal::InternedName::ownedByTable) return;
  name_->owners.fetch_add(1, std::memory_order_relaxed);
}

void StringId::release() const {
  if (name_ == nullptr || name_->owners == internal::InternedName::ownedByTable) return;
  if (name_->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) delete name_;
}

}  // namespace ca::astapi
