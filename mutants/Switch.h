// Included by each file of the copy that has mistakes: makes at run time the one that the
// environment selects.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

// What a mistake may look like is no reason to refuse it.
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wparentheses"
#pragma GCC diagnostic ignored "-Wempty-body"
#pragma GCC diagnostic ignored "-Wdangling-else"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wnarrowing"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wtype-limits"
#pragma GCC diagnostic ignored "-Wreturn-type"
#pragma GCC diagnostic ignored "-Waddress"
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wint-in-bool-context"

namespace mutants {
namespace {

// One byte for each number of a mistake, in a file that all processes of a test share. Null unless
// a test is explored.
unsigned char* mapReached() {
  const char* const file = std::getenv("MUTANTS_REACHED");
  const int descriptor = file == nullptr ? -1 : ::open(file, O_RDWR | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  const auto size = static_cast<std::size_t>(::lseek(descriptor, 0, SEEK_END));
  void* const bytes = ::mmap(nullptr, size, PROT_WRITE, MAP_SHARED, descriptor, 0);
  ::close(descriptor);
  return bytes == MAP_FAILED ? nullptr : static_cast<unsigned char*>(bytes);
}

// Set before the other variables of the file, whose first values may have mistakes too.
unsigned char* const reached = mapReached();
const char* const selectedText = std::getenv("MUTANTS_SELECTED");
const int selected = selectedText == nullptr ? 0 : std::atoi(selectedText);

// Whether mistake `number` is made. Not constexpr: where the compiler needs a value, a mistake
// could never be made, and does not compile.
inline bool isOn(int number) {
  if (reached != nullptr) reached[number] = 1;
  return number == selected;
}

// The value after `value`, in its own type.
template <class Value>
Value next(Value value) {
  return static_cast<Value>(value + 1);
}

}  // namespace
}  // namespace mutants
