// Short values that identify bytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace soca {

// Distinguishes texts, but is not safe against texts made to collide.
struct Digest {
  std::uint64_t size = 0;
  std::uint64_t low = 0;
  std::uint64_t high = 0;

  friend bool operator==(const Digest&, const Digest&) = default;
};

Digest digestOf(std::string_view bytes);

// Detects whether bytes read from the disk are those that were written.
std::uint64_t checksumOf(std::string_view bytes);

// The SHA-256 of the bytes, as 64 lower-case hexadecimal digits.
std::string sha256(std::string_view bytes);

}  // namespace soca
