#include "platform/analyzer/text/CharacterMap.h"

#include <algorithm>
#include <array>

#include "platform/analyzer/text/Units64.h"

namespace ca {

void CharacterMap::begin(fl::ustring_view text) {
  size_ = text.size();
  mayHoldNul_ = false;
  for (Bits* bits : {&lineEnds_, &blankEnds_, &nameEnds_}) bits->resize(size_ / unitsPerWord + 1);
}

void CharacterMap::read(fl::ustring_view text) {
  begin(text);
  const std::size_t last = size_ / unitsPerWord;
  for (std::size_t i = 0; i < last; ++i) readWord(text.data() + i * unitsPerWord, i);
  readLastWord(text);
}

void CharacterMap::readPart(fl::ustring_view text, std::uint32_t begin, std::uint32_t end) {
  this->begin(text);
  const std::size_t last = size_ / unitsPerWord;
  const std::size_t stop = std::min<std::size_t>(end / unitsPerWord + 1, last);
  for (std::size_t i = begin / unitsPerWord; i < stop; ++i) {
    readWord(text.data() + i * unitsPerWord, i);
  }
  if (stop == last) return readLastWord(text);
  // Ends every search.
  for (Bits* bits : {&lineEnds_, &blankEnds_, &nameEnds_}) (*bits)[stop] = ~std::uint64_t{0};
}

void CharacterMap::readLastWord(fl::ustring_view text) {
  const std::size_t last = size_ / unitsPerWord;
  // Padded with a character that belongs to no class.
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
