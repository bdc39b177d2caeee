// The names of one text, each held once.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/analyzer/Arena.h"
#include "platform/analyzer/NameHash.h"
#include "platform/analyzer/SourceText.h"
#include "platform/text/UString.h"

namespace ca {

// Names lie in the arena of their tree and point into its text; both must outlive the table.
class NameTable {
 public:
  explicit NameTable(Arena* arena) : arena_(arena) {}
  NameTable(const NameTable&) = delete;
  NameTable& operator=(const NameTable&) = delete;
  ~NameTable();

  // The places where names are looked up, which only the making of a tree needs: one text after the
  // other may use the same memory.
  class Slots {
   public:
    void clear();

   private:
    friend class NameTable;

    // Open addressing over a power of two of slots.
    std::vector<const astapi::internal::InternedName*> slots_;
    std::size_t used_ = 0;
  };

  // The one entry for `name`, which stands in the text. Lives as long as the arena. `slots` must be
  // the same in all calls, and empty in the first.
  const astapi::internal::InternedName* intern(fl::ustring_view name, Slots& slots) {
    const std::uint32_t hash = astapi::internal::hashName(name);
    const std::size_t mask = slots.slots_.size() - 1;
    std::size_t slot = hash & mask;
    while (const astapi::internal::InternedName* entry = slots.slots_[slot]) {
      if (entry->hash == hash && entry->length == name.size() &&
          astapi::internal::isSameName(entry->text, name.data(), name.size())) {
        return entry;
      }
      slot = (slot + 1) & mask;
    }
    return add(name, hash, slots, slot);
  }

 private:
  const astapi::internal::InternedName* add(fl::ustring_view name, std::uint32_t hash, Slots& slots,
                                            std::size_t slot);
  void grow(Slots& slots) const;

  Arena* arena_;
  const astapi::internal::InternedName* last_ = nullptr;
};

}  // namespace ca
