// Memory that is given back all at once: the nodes and lists of one syntax tree.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace ca {

// What is made in an arena is never destroyed one by one.
class Arena {
 public:
  // The first block has `firstBlockSize` bytes; later ones are at least as large.
  explicit Arena(std::size_t firstBlockSize) : blockSize_(firstBlockSize) {}
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

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

  // Room for `count` values, not initialised.
  template <class T>
  T* makeArray(std::size_t count) {
    static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= alignment);
    return static_cast<T*>(allocate(count * sizeof(T)));
  }

 private:
  static constexpr std::size_t alignment = 8;

  void addBlock(std::size_t atLeast) {
    const std::size_t size = atLeast > blockSize_ ? atLeast : blockSize_;
    blocks_.push_back(std::unique_ptr<std::byte[]>(new std::byte[size]));
    next_ = blocks_.back().get();
    end_ = next_ + size;
  }

  std::size_t blockSize_;
  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
};

}  // namespace ca
