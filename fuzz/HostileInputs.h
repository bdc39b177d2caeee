// Inputs with a high cost: deep, long, wide and cyclic.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace soca::fuzz {

// One input, for one run of the program.
struct HostileInput {
  std::string name;
  // The arguments of the program, which runs in the input's folder.
  std::vector<std::string> arguments;
  // Makes the files in an empty folder, of about `bytes` bytes in total.
  std::function<void(const std::filesystem::path& folder, std::size_t bytes)> make;
  // The largest input for which the bounds are promised.
  std::size_t promisedBytes = 10'000'000;
};

// All inputs, in a fixed order.
std::vector<HostileInput> hostileInputs();

}  // namespace soca::fuzz
