// One fuzzer: the function that libFuzzer calls. SOCA_FUZZ_TARGET names the target.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/Targets.h"

// An exception ends the process, and libFuzzer keeps the input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr std::string_view name = SOCA_FUZZ_TARGET;
  for (const soca::fuzz::Target& target : soca::fuzz::targets) {
    if (target.name == name) target.run({reinterpret_cast<const char*>(data), size});
  }
  return 0;
}
