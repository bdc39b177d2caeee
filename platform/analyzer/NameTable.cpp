#include "platform/analyzer/NameTable.h"

namespace ca {

using astapi::internal::InternedName;

namespace {

constexpr std::size_t initialSlots = 256;

// The multiplication of the hash leaves its best bits on top.
std::size_t slotOf(std::uint32_t hash, std::size_t slots) {
  return (hash ^ hash >> 15U) & (slots - 1);
}

}  // namespace

NameTable::NameTable() : slots_(initialSlots) {}

const InternedName* NameTable::intern(fl::ustring_view name, std::uint32_t hash) {
  std::size_t slot = slotOf(hash, slots_.size());
  while (const InternedName* entry = slots_[slot]) {
    if (entry->hash == hash && entry->text == name) return entry;
    slot = (slot + 1) & (slots_.size() - 1);
  }
  InternedName& added = names_.emplace_back();
  added.text = name;
  added.hash = hash;
  slots_[slot] = &added;
  if (names_.size() * 2 > slots_.size()) grow();
  return &added;
}

void NameTable::grow() {
  slots_.assign(slots_.size() * 2, nullptr);
  for (const InternedName& name : names_) {
    std::size_t slot = slotOf(name.hash, slots_.size());
    while (slots_[slot] != nullptr) slot = (slot + 1) & (slots_.size() - 1);
    slots_[slot] = &name;
  }
}

}  // namespace ca
