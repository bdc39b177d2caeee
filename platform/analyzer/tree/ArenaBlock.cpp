#include "platform/analyzer/tree/ArenaBlock.h"

#include <algorithm>
#include <new>

namespace ca {
namespace {

// Large enough for the tree of a usual class; with its header and malloc's it fits in 64 KiB.
constexpr std::size_t usualSize = (std::size_t{64} << 10U) - 64;
constexpr std::size_t largestSize = std::size_t{4} << 20U;

constexpr unsigned mostSpare = 4;

// Whether the thread's spare blocks have been destroyed. A tree may be destroyed after them while
// its thread ends; this flag has no destructor and stays readable.
thread_local bool isThreadEnding = false;

}  // namespace

// The spare blocks of one thread: at most `mostSpare`, all of `usualSize`.
class SpareBlocks {
 public:
  SpareBlocks() = default;
  SpareBlocks(const SpareBlocks&) = delete;
  SpareBlocks& operator=(const SpareBlocks&) = delete;
  ~SpareBlocks() {
    isThreadEnding = true;
    while (ArenaBlock* block = take()) ::operator delete(block);
  }

  static SpareBlocks& ofThread() {
    thread_local SpareBlocks spare;
    return spare;
  }

  // Null when there is none.
  ArenaBlock* take() {
    ArenaBlock* block = last_;
    if (block == nullptr) return nullptr;
    last_ = block->previous_;
    --count_;
    return block;
  }

  // Whether the block was kept.
  bool keep(ArenaBlock* block) {
    if (count_ == mostSpare || block->size_ != usualSize) return false;
    block->previous_ = last_;
    last_ = block;
    ++count_;
    return true;
  }

 private:
  ArenaBlock* last_ = nullptr;
  unsigned count_ = 0;
};

ArenaBlock* ArenaBlock::take(std::size_t atLeast, ArenaBlock* previous) {
  const std::size_t wanted =
      previous == nullptr ? usualSize : std::min(previous->size_ * 2, largestSize);
  const std::size_t size = std::max(atLeast, wanted);
  void* memory = nullptr;
  if (size == usualSize && !isThreadEnding) memory = SpareBlocks::ofThread().take();
  if (memory == nullptr) memory = ::operator new(sizeof(ArenaBlock) + size);
  return new (memory) ArenaBlock(size, previous);
}

void ArenaBlock::releaseAll(ArenaBlock* last) noexcept {
  while (last != nullptr) {
    ArenaBlock* block = last;
    last = block->previous_;
    if (isThreadEnding || !SpareBlocks::ofThread().keep(block)) ::operator delete(block);
  }
}

}  // namespace ca
