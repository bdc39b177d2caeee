// The children of a node of the syntax tree.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lf::astapi {

// A list of nodes, in source order.
template <class T>
class NodeList {
 public:
  NodeList() = default;
  NodeList(const T* const* nodes, std::size_t size)
      : nodes_(nodes), size_(static_cast<std::uint32_t>(size)) {}

  const T* const* begin() const { return nodes_; }
  const T* const* end() const { return nodes_ + size_; }
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const T* operator[](std::size_t index) const { return nodes_[index]; }
  const T* front() const { return nodes_[0]; }
  const T* back() const { return nodes_[size_ - 1]; }

 private:
  const T* const* nodes_ = nullptr;
  std::uint32_t size_ = 0;
};

}  // namespace lf::astapi
