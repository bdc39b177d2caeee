#include "files/writing/Digest.h"

#include <nettle/sha2.h>
#define XXH_INLINE_ALL
#include <xxhash.h>

#include <array>

namespace soca {

Digest digestOf(std::string_view bytes) {
  const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
  return {bytes.size(), hash.low64, hash.high64};
}

std::uint64_t checksumOf(std::string_view bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }

std::string sha256(std::string_view bytes) {
  sha256_ctx context;
  nettle_sha256_init(&context);
  // The library takes bytes of another type with the same representation.
  nettle_sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest;
  nettle_sha256_digest(&context, digest.size(), digest.data());
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  text.reserve(2 * digest.size());
  for (const unsigned byte : digest) {
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
  }
  return text;
}

}  // namespace soca
