#include "platform/analyzer/NameTable.h"

#include <algorithm>

namespace ca {

using astapi::internal::InternedName;

namespace {

constexpr std::size_t initialSlots = 256;

}  // namespace

NameTable::~NameTable() {
  for (const InternedName* name = last_; name != nullptr; name = name->previous) {
    delete name->string.load(std::memory_order_relaxed);
  }
}

void NameTable::Slots::clear() {
  slots_.resize(initialSlots);
  std::fill(slots_.begin(), slots_.end(), nullptr);
  used_ = 0;
}

const InternedName* NameTable::add(fl::ustring_view name, std::uint32_t hash, Slots& slots,
                                   std::size_t slot) {
  auto* added = arena_->make<InternedName>();
  added->text = name.data();
  added->length = static_cast<std::uint32_t>(name.size());
  added->hash = hash;
  added->previous = last_;
  last_ = added;
  slots.slots_[slot] = added;
  if (++slots.used_ * 2 > slots.slots_.size()) grow(slots);
  return added;
}

void NameTable::grow(Slots& slots) const {
  slots.slots_.assign(slots.slots_.size() * 2, nullptr);
  const std::size_t mask = slots.slots_.size() - 1;
  for (const InternedName* name = last_; name != nullptr; name = name->previous) {
    std::size_t slot = name->hash & mask;
    while (slots.slots_[slot] != nullptr) slot = (slot + 1) & mask;
    slots.slots_[slot] = name;
  }
}

}  // namespace ca
