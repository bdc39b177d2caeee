// Reads the bodies of functions that the parser skipped.
#pragma once

#include <atomic>

namespace lf::astapi {

template <class Tag>
struct FunctionDefinition;

// Adds what a function lacks whose body was skipped.
template <class Tag>
class BodyReader {
 public:
  // Safe to use from several threads.
  virtual void read(const FunctionDefinition<Tag>& function) const = 0;

  // The function with its body.
  static const FunctionDefinition<Tag>& complete(const FunctionDefinition<Tag>& function) {
    const auto* reader = function.reader.load(std::memory_order_acquire);
    if (reader != nullptr) reader->read(function);
    return function;
  }

 protected:
  ~BodyReader() = default;
};

// Null for a complete function.
template <class Tag>
using SkippedBody = std::atomic<const BodyReader<Tag>*>;

}  // namespace lf::astapi
