#include "platform/analyzer/text/CharacterMap.h"

#include <algorithm>
#include <array>

#include "platform/analyzer/text/Units64.h"

namespace ca {

void CharacterMap::read(fl::ustring_view text) {
  size_ = text.size();
  mayHoldNul_ = false;
  const std::size_t last = size_ / unitsPerWord;
  for (Bits* bits : {&lineEnds_, &blankEnds_, &nameEnds_}) bits->resize(last + 1);
  for (std::size_t i = 0; i < last; ++i) readWord(text.data() + i * unitsPerWord, i);
  // The last word is padded with a character that belongs to no class.
  std::array<char16_t, unitsPerWord> rest;
  rest.fill(u'!');
  std::copy_n(text.data() + last * unitsPerWord, size_ % unitsPerWord, rest.begin());
  readWord(rest.data(), last);
  lineEnds_.back() |= std::uint64_t{1} << size_ % unitsPerWord;
}

void CharacterMap::readWord(const char16_t* units, std::size_t index) {
  const Units64 read(units);
  const std::uint64_t lineEnds = read.lineEnds();
  lineEnds_[index] = lineEnds;
  blankEnds_[index] = ~read.whiteSpace() | lineEnds;
  nameEnds_[index] = ~read.nameParts();
  mayHoldNul_ = mayHoldNul_ || read.mayHoldNul();
}

std::uint32_t CharacterMap::findFar(const Bits& bits, std::uint32_t index) {
  while (bits[index] == 0) ++index;
  return index * unitsPerWord + static_cast<std::uint32_t>(std::countr_zero(bits[index]));
}

}  // namespace ca
