// The blocks of memory that arenas are made of.
#pragma once

#include <cstddef>

namespace ca {

// A block, with its memory right behind it. Each thread keeps a few blocks of the usual size for
// its next trees: memory that was used a moment ago is at hand, while fresh memory must be asked of
// the system and filled with zeros by it.
class alignas(16) ArenaBlock {
 public:
  // A block with at least `atLeast` bytes, the last of a chain of which `previous` was the last.
  // The chain grows with its blocks, so that it has few of them. Throws std::bad_alloc.
  static ArenaBlock* take(std::size_t atLeast, ArenaBlock* previous);
  // Gives the whole chain back; null is an empty one. May be called on any thread.
  static void releaseAll(ArenaBlock* last) noexcept;

  std::byte* begin() { return reinterpret_cast<std::byte*>(this + 1); }
  std::byte* end() { return begin() + size_; }

 private:
  friend class SpareBlocks;

  ArenaBlock(std::size_t size, ArenaBlock* previous) : size_(size), previous_(previous) {}

  std::size_t size_;
  ArenaBlock* previous_;
};

}  // namespace ca
