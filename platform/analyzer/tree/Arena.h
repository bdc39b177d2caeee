// Memory that is freed as a whole: the nodes and lists of one syntax tree.
#pragma once

#include <cstddef>
#include <new>
#include <type_traits>

#include "platform/analyzer/tree/ArenaBlock.h"

namespace ca {

// Destructors of the objects in an arena are never called.
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena() { ArenaBlock::releaseAll(last_); }

  void* allocate(std::size_t size) {
    size = (size + alignment - 1) & ~(alignment - 1);
    if (size > static_cast<std::size_t>(end_ - next_)) addBlock(size);
    void* result = next_;
    next_ += size;
    return result;
  }

  template <class T>
  T* make() {
    static_assert(alignof(T) <= alignment);
    return new (allocate(sizeof(T))) T();
  }

  // Memory for `count` values, not initialised.
  template <class T>
  T* makeArray(std::size_t count) {
    static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= alignment);
    return static_cast<T*>(allocate(count * sizeof(T)));
  }

 private:
  static constexpr std::size_t alignment = 8;

  void addBlock(std::size_t atLeast) {
    last_ = ArenaBlock::take(atLeast, last_);
    next_ = last_->begin();
    end_ = last_->end();
  }

  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;
  ArenaBlock* last_ = nullptr;
};

}  // namespace ca
