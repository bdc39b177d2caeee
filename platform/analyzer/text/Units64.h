// Compares 64 code units at once; the result has one bit for each unit.
#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#else
#include <algorithm>
#include <iterator>
#endif

namespace ca {

// The first unit is the lowest bit. A unit beyond ASCII belongs to no class. The first variant
// needs SSE2, which every x86-64 processor has; the second one gives the same results without it.
#if defined(__SSE2__)

class Units64 {
 public:
  explicit Units64(const char16_t* units) {
    for (__m128i& bytes : bytes_) {
      bytes = _mm_packus_epi16(load(units), load(units + 8));
      units += 16;
    }
  }

  std::uint64_t lineEnds() const {
    return gather([](__m128i bytes) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')); });
  }

  // Tabs, vertical tabs, form feeds, line ends, carriage returns and blanks.
  std::uint64_t whiteSpace() const {
    return gather([](__m128i bytes) {
      return _mm_or_si128(isWithin(bytes, '\t', '\r'), _mm_cmpeq_epi8(bytes, _mm_set1_epi8(' ')));
    });
  }

  // ASCII letters, digits and `_`.
  std::uint64_t nameParts() const {
    return gather([&](__m128i bytes) {
      const __m128i lower = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
      const __m128i others =
          _mm_or_si128(isWithin(bytes, '0', '9'), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('_')));
      return _mm_or_si128(isWithin(lower, 'a', 'z'), others);
    });
  }

  // Whether one of them is U+0000; may also be true for units from U+8000 on.
  bool mayHoldNul() const {
    const __m128i least =
        _mm_min_epu8(_mm_min_epu8(bytes_[0], bytes_[1]), _mm_min_epu8(bytes_[2], bytes_[3]));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(least, _mm_setzero_si128())) != 0;
  }

 private:
  static __m128i load(const char16_t* units) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
  }

  // Adds a wrapping offset that moves `last` to the largest signed byte; the bytes of the range are
  // then those above the moved `first - 1`, which takes a single comparison.
  static __m128i isWithin(__m128i bytes, char first, char last) {
    constexpr int largest = 0x7F;
    const __m128i moved = _mm_add_epi8(bytes, _mm_set1_epi8(static_cast<char>(largest - last)));
    return _mm_cmpgt_epi8(moved, _mm_set1_epi8(static_cast<char>(largest - last + first - 1)));
  }

  template <class Compare>
  std::uint64_t gather(const Compare& compare) const {
    std::uint64_t bits = 0;
    for (unsigned i = 0; i < 4; ++i) {
      const auto part = static_cast<std::uint32_t>(_mm_movemask_epi8(compare(bytes_[i])));
      bits |= std::uint64_t{part} << (16 * i);
    }
    return bits;
  }

  __m128i bytes_[4];
};

#else

class Units64 {
 public:
  explicit Units64(const char16_t* units) {
    for (unsigned i = 0; i < 64; ++i) {
      bytes_[i] = static_cast<std::uint8_t>(std::min<unsigned>(units[i], 0xFF));
    }
  }

  std::uint64_t lineEnds() const {
    return gather([](std::uint8_t byte) { return byte == '\n'; });
  }

  std::uint64_t whiteSpace() const {
    return gather([](std::uint8_t byte) { return isWithin(byte, '\t', '\r') || byte == ' '; });
  }

  std::uint64_t nameParts() const {
    return gather([](std::uint8_t byte) {
      const auto lower = static_cast<std::uint8_t>(byte | 0x20U);
      return isWithin(lower, 'a', 'z') || isWithin(byte, '0', '9') || byte == '_';
    });
  }

  bool mayHoldNul() const { return std::ranges::find(bytes_, 0) != std::end(bytes_); }

 private:
  static bool isWithin(std::uint8_t byte, char first, char last) {
    return byte >= first && byte <= last;
  }

  template <class Compare>
  std::uint64_t gather(const Compare& compare) const {
    std::uint64_t bits = 0;
    for (unsigned i = 0; i < 64; ++i) bits |= std::uint64_t{compare(bytes_[i])} << i;
    return bits;
  }

  std::uint8_t bytes_[64];
};

#endif

}  // namespace ca
