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
  map_.read(text);
  elements_.clear();
  return map_;
}

void ParserMemory::readPart(fl::ustring_view text, std::uint32_t begin, std::uint32_t end) {
  map_.readPart(text, begin, end);
  elements_.clear();
}

void ParserMemory::shrink() {
  if (map_.capacity() > largestUsualText) *this = {};
}

}  // namespace ca
