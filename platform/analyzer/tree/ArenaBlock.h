// The blocks of memory of which arenas consist.
#pragma once

#include <cstddef>

namespace ca {

// The header of a block; the block's memory follows it directly. A block belongs to one chain or to
// the spare blocks of one thread. Reused blocks save the page faults and the zeroing of fresh
// memory.
class alignas(16) ArenaBlock {
 public:
  // A block with at least `atLeast` bytes that is added to the chain that ends with `previous`.
  // Each block is twice as large as the one before it, up to 4 MiB. Throws std::bad_alloc.
  static ArenaBlock* take(std::size_t atLeast, ArenaBlock* previous);
  // Frees the whole chain; null is an empty chain. May be called on any thread.
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
