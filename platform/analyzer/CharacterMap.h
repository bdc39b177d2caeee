// Where the line ends, blanks and names of a text are, a bit a code unit: the lexer passes runs of
// them in a few steps, however long they are.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/text/UString.h"

namespace ca {

// A map can be made of one text after the other, so that its memory serves for all. Positions are
// indices of code units, at most the size of the text.
class CharacterMap {
 public:
  void read(fl::ustring_view text);

  // The first line end at or behind `from`; the size of the text when there is none.
  std::uint32_t findLineEnd(std::uint32_t from) const {
    return findBit(from, [](const Block& block) { return block.lineEnds; });
  }
  // The first code unit at or behind `from` that is no blank.
  std::uint32_t findBlanksEnd(std::uint32_t from) const {
    return findBit(from, [](const Block& block) { return ~block.blanks; });
  }
  // The first code unit at or behind `from` that is no ASCII letter, no digit and no `_`.
  std::uint32_t findNameEnd(std::uint32_t from) const {
    return findBit(from, [](const Block& block) { return ~block.nameParts; });
  }

  // Whether there is a U+0000 in the text.
  bool hasNul() const { return hasNul_; }

  // Calls `take` with the position of each line end, in order.
  template <class Take>
  void forEachLineEnd(const Take& take) const {
    for (std::size_t index = 0; index < blocks_.size(); ++index) {
      for (std::uint64_t bits = blocks_[index].lineEnds; bits != 0; bits &= bits - 1) {
        const std::size_t position = index * unitsPerBlock + std::countr_zero(bits);
        if (position < size_) take(static_cast<std::uint32_t>(position));
      }
    }
  }

 private:
  static constexpr unsigned unitsPerBlock = 64;

  // Behind the text there is one line end, and nothing else.
  struct Block {
    std::uint64_t lineEnds = 0;
    std::uint64_t blanks = 0;
    std::uint64_t nameParts = 0;
  };

  template <class Select>
  std::uint32_t findBit(std::uint32_t from, const Select& select) const {
    const Block* block = &blocks_[from / unitsPerBlock];
    if (const std::uint64_t bits = select(*block) >> from % unitsPerBlock; bits != 0) {
      return from + static_cast<std::uint32_t>(std::countr_zero(bits));
    }
    std::uint64_t bits = 0;
    do bits = select(*++block);
    while (bits == 0);
    const auto index = static_cast<std::uint32_t>(block - blocks_.data());
    return index * unitsPerBlock + static_cast<std::uint32_t>(std::countr_zero(bits));
  }

  void readBlock(const char16_t* units, Block& block);

  std::vector<Block> blocks_;
  std::size_t size_ = 0;
  bool hasNul_ = false;
};

}  // namespace ca
