#include "platform/analyzer/CharacterMap.h"

#include <algorithm>
#include <array>

#include "platform/analyzer/Units64.h"

namespace ca {

void CharacterMap::read(fl::ustring_view text) {
  size_ = text.size();
  hasNul_ = false;
  blocks_.resize(size_ / unitsPerBlock + 1);
  const char16_t* units = text.data();
  for (std::size_t index = 0; index + 1 < blocks_.size(); ++index, units += unitsPerBlock) {
    readBlock(units, blocks_[index]);
  }
  // The last block is filled up with characters that are none of these.
  std::array<char16_t, unitsPerBlock> rest;
  rest.fill(u'!');
  const std::size_t restSize = size_ % unitsPerBlock;
  std::copy_n(units, restSize, rest.begin());
  readBlock(rest.data(), blocks_.back());
  blocks_.back().lineEnds |= std::uint64_t{1} << restSize;
}

void CharacterMap::readBlock(const char16_t* units, Block& block) {
  const Units64 read(units);
  block.lineEnds = read.equal('\n');
  block.blanks = read.equal(' ') | (read.within('\t', 5) & ~block.lineEnds);
  block.nameParts = read.nameParts();
  hasNul_ = hasNul_ || read.equal('\0') != 0;
}

}  // namespace ca
