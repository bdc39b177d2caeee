#include "platform/analyzer/parser/ParserMemory.h"

namespace ca {
namespace {

constexpr std::size_t largestUsualText = std::size_t{256} << 10U;  // code units

}  // namespace

ParserMemory& ParserMemory::ofThread() {
  thread_local ParserMemory memory;
  return memory;
}

const CharacterMap& ParserMemory::read(fl::ustring_view text) {
  textSize_ = text.size();
  map_.read(text);
  elements_.clear();
  return map_;
}

void ParserMemory::shrink() {
  if (textSize_ > largestUsualText) *this = {};
}

}  // namespace ca
