// The names of one text, each held once.
#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "platform/analyzer/SourceText.h"
#include "platform/text/UString.h"

namespace ca {

class NameTable {
 public:
  NameTable();
  NameTable(const NameTable&) = delete;
  NameTable& operator=(const NameTable&) = delete;

  // The one entry for `name`, whose hash by astapi::internal::hashName is `hash`. Lives as long as
  // the table.
  const astapi::internal::InternedName* intern(fl::ustring_view name, std::uint32_t hash);

 private:
  void grow();

  std::deque<astapi::internal::InternedName> names_;
  // Open addressing over a power of two of slots.
  std::vector<const astapi::internal::InternedName*> slots_;
};

}  // namespace ca
