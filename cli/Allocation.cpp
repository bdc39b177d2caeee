// The operators of the C++ library for memory, on top of the allocator's `malloc`. The allocator
// has its own, but its library is C: where there is no memory they end the process, and these
// throw.
#include <cstdlib>
#include <new>

namespace {

void* checked(void* memory) {
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t size) { return checked(std::malloc(size)); }
void* operator new[](std::size_t size) { return checked(std::malloc(size)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  const auto unit = static_cast<std::size_t>(alignment);
  return checked(std::aligned_alloc(unit, (size + unit - 1) / unit * unit));
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
