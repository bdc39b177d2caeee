// One fuzzer: what libFuzzer calls. SOCA_FUZZ_TARGET names the target.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/Targets.h"

// What it throws ends the process, and the input is kept.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static constexpr std::string_view name = SOCA_FUZZ_TARGET;
  for (const soca::fuzz::Target& target : soca::fuzz::targets) {
    if (target.name == name) target.run({reinterpret_cast<const char*>(data), size});
  }
  return 0;
}
