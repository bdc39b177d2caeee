// The line ends, blanks and names of a text, one bit for each code unit, so that the lexer skips a
// run of them 64 units at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/text/UString.h"

namespace ca {

// A map can be read from one text after another and reuses its memory. Positions are indices of
// code units, at most the size of the text. The searches need no bound: line ends have a bit just
// after the text, and the padding ends every run of blanks and every name.
class CharacterMap {
 public:
  void read(fl::ustring_view text);
  // Reads only the code units from `begin` up to `end`; searches must begin there, and end there or
  // a few units after it.
  void readPart(fl::ustring_view text, std::uint32_t begin, std::uint32_t end);

  // The first line end at or after `from`; the size of the text if there is none.
  std::uint32_t findLineEnd(std::uint32_t from) const { return find(lineEnds_, from); }
  // The first code unit at or after `from` that is no blank.
  std::uint32_t findBlanksEnd(std::uint32_t from) const { return find(blankEnds_, from); }
  // The first code unit at or after `from` that is no ASCII letter, no digit and no `_`.
  std::uint32_t findNameEnd(std::uint32_t from) const { return find(nameEnds_, from); }

  // The same if the result is in the same word as `from`, and otherwise 0.
  std::uint32_t findNearBlanksEnd(std::uint32_t from) const { return findNear(blankEnds_, from); }
  std::uint32_t findNearNameEnd(std::uint32_t from) const { return findNear(nameEnds_, from); }

  // The size of a text for which there is room.
  std::size_t capacity() const { return lineEnds_.capacity() * unitsPerWord; }
  // Whether there may be a U+0000 in the text.
  bool mayHoldNul() const { return mayHoldNul_; }

  static constexpr unsigned unitsPerWord = 64;

  // One bit for each code unit; the first unit is the lowest bit of the first word.
  using Bits = std::vector<std::uint64_t>;

  // The line ends, and one just after the text.
  const Bits& lineEnds() const { return lineEnds_; }

 private:
  static std::uint32_t findNear(const Bits& bits, std::uint32_t from) {
    const std::uint64_t word = bits[from / unitsPerWord] >> from % unitsPerWord;
    return word != 0 ? from + static_cast<std::uint32_t>(std::countr_zero(word)) : 0;
  }
  static std::uint32_t find(const Bits& bits, std::uint32_t from) {
    const std::uint64_t word = bits[from / unitsPerWord] >> from % unitsPerWord;
    if (word != 0) return from + static_cast<std::uint32_t>(std::countr_zero(word));
    return findFar(bits, from / unitsPerWord + 1);
  }
  // The first bit in the words from `index` on.
  static std::uint32_t findFar(const Bits& bits, std::uint32_t index);

  // Makes room for a text; the words have no values yet.
  void begin(fl::ustring_view text);
  void readWord(const char16_t* units, std::size_t index);
  void readLastWord(fl::ustring_view text);

  Bits lineEnds_;
  Bits blankEnds_;
  Bits nameEnds_;
  std::size_t size_ = 0;
  bool mayHoldNul_ = false;
};

}  // namespace ca
