// The names of one text as strings.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <utility>

#include "platform/analyzer/text/SourceText.h"
#include "platform/text/UString.h"

namespace ca {

// Makes each string when it is first asked for. Names are views of the text, which must not move.
class TextNames final : public astapi::internal::NameStrings {
 public:
  const fl::ustring& stringOf(fl::ustring_view name) const override {
    const std::lock_guard lock(mutex_);
    return strings_.try_emplace({name.data(), name.size()}, name).first->second;
  }

 private:
  mutable std::mutex mutex_;
  // The key is the place of the name in the text.
  mutable std::map<std::pair<const char16_t*, std::size_t>, fl::ustring> strings_;
};

}  // namespace ca
