#include "model/DotIndex.h"

#include <algorithm>

namespace soca {

DotIndex::DotIndex(fl::ustring_view text, std::vector<fl::ustring_view> names) {
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  names_.reserve(names.size());
  for (const fl::ustring_view name : names) names_.push_back({name});
  linkPrefixes();
  for (std::size_t dot = text.find(u'.'); dot != fl::ustring_view::npos;
       dot = text.find(u'.', dot + 1)) {
    noteDot(text, dot);
  }
}

void DotIndex::linkPrefixes() {
  // What a name begins with stands in front of it, with nothing but its likes in between.
  Name* previous = nullptr;
  for (Name& name : names_) {
    while (previous != nullptr && !name.text.starts_with(previous->text)) {
      previous = previous->prefix;
    }
    name.prefix = previous;
    previous = &name;
  }
}

void DotIndex::noteDot(fl::ustring_view text, std::size_t dot) {
  const fl::ustring_view behind = text.substr(dot + 1);
  const auto isBehind = [](fl::ustring_view key, const Name& name) { return key < name.text; };
  const auto next = std::upper_bound(names_.begin(), names_.end(), behind, isBehind);
  Name* name = next != names_.begin() ? &*(next - 1) : nullptr;
  while (name != nullptr && !behind.starts_with(name->text)) name = name->prefix;
  // What a noted name begins with is noted too.
  for (; name != nullptr && name->firstDot == fl::ustring_view::npos; name = name->prefix) {
    name->firstDot = dot;
  }
}

std::size_t DotIndex::findBehind(fl::ustring_view name) const {
  const auto found = std::ranges::lower_bound(names_, name, {}, &Name::text);
  if (found == names_.end() || found->text != name || found->firstDot == fl::ustring_view::npos) {
    return fl::ustring_view::npos;
  }
  return found->firstDot + 1 + name.size();
}

}  // namespace soca
