#include "files/writing/Digest.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace soca::cli {

Digest digestOf(std::string_view bytes) {
  const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
  return {bytes.size(), hash.low64, hash.high64};
}

std::uint64_t checksumOf(std::string_view bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }

}  // namespace soca::cli
