// Random choices that are the same on every machine.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>

namespace bench {

// The standard specifies the numbers of this engine but not those of its distributions, so no
// distribution is used.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}

  // A number in [0, sides); `sides` is not 0.
  std::size_t roll(std::size_t sides) { return static_cast<std::size_t>(engine_() % sides); }

  bool once(std::size_t in) { return roll(in) == 0; }

  template <class T, std::size_t N>
  const T& pick(const std::array<T, N>& choices) {
    return choices[roll(N)];
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace bench
