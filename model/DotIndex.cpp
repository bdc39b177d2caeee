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
  // In sorted order, all names between a name and its prefix also begin with that prefix.
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
  const fl::ustring_view rest = text.substr(dot + 1);
  const auto isBefore = [](fl::ustring_view key, const Name& name) { return key < name.text; };
  const auto next = std::upper_bound(names_.begin(), names_.end(), rest, isBefore);
  // The longest name that begins `rest` is the last name not after it, or a prefix of that one.
  Name* name = next != names_.begin() ? &*(next - 1) : nullptr;
  while (name != nullptr && !rest.starts_with(name->text)) name = name->prefix;
  // If a name already has a dot, so have all its prefixes.
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
