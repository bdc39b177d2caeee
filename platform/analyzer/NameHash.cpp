#include "platform/analyzer/NameHash.h"

#include <random>

namespace ca::astapi::internal {
namespace {

std::uint64_t makeSeed() {
  std::random_device device;
  return std::uint64_t{device()} << 32U | device();
}

}  // namespace

const std::uint64_t nameHashSeed = makeSeed();

}  // namespace ca::astapi::internal
