// The hash of names.
#pragma once

#include <cstdint>
#include <cstring>

#include "platform/text/UString.h"

namespace ca::astapi::internal {

// Differs from process to process, so that nobody can make up a text whose names all have one hash.
extern const std::uint64_t nameHashSeed;

// Four code units as one word.
inline std::uint64_t loadUnits(const char16_t* units) {
  std::uint64_t word = 0;
  std::memcpy(&word, units, sizeof word);
  return word;
}

// The product of the two halves: no difference of two words gives one result under every seed.
inline std::uint64_t mixUnits(std::uint64_t hash, std::uint64_t word) {
  const std::uint64_t mixed = hash ^ word;
  return (mixed & 0xFFFFFFFF) * (mixed >> 32U) ^ hash;
}

// Takes four code units at a step. The last step overlaps the one before it; a shorter name is one
// word of its first, middle and last unit, which are all that it has.
inline std::uint32_t hashName(fl::ustring_view name) {
  const char16_t* units = name.data();
  const std::size_t size = name.size();
  std::uint64_t hash = nameHashSeed ^ size * 0x9E3779B97F4A7C15;
  if (size >= 4) {
    const char16_t* const last = units + size - 4;
    for (; units < last; units += 4) hash = mixUnits(hash, loadUnits(units)) * 0x9E3779B97F4A7C15;
    hash = mixUnits(hash, loadUnits(last));
  } else if (size > 0) {
    const std::uint64_t middle = units[size / 2];
    const std::uint64_t end = units[size - 1];
    hash = mixUnits(hash, units[0] | middle << 16U | end << 32U);
  }
  return static_cast<std::uint32_t>(hash ^ hash >> 32U);
}

// Whether two names of `size` units are one, a word at a step as above.
inline bool isSameName(const char16_t* left, const char16_t* right, std::size_t size) {
  if (size >= 4) {
    for (std::size_t at = 0; at + 4 < size; at += 4) {
      if (loadUnits(left + at) != loadUnits(right + at)) return false;
    }
    return loadUnits(left + size - 4) == loadUnits(right + size - 4);
  }
  for (std::size_t at = 0; at < size; ++at) {
    if (left[at] != right[at]) return false;
  }
  return true;
}

}  // namespace ca::astapi::internal
