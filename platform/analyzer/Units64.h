// Sixty-four code units that are compared at once, with one bit a unit as the answer.
#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#else
#include <algorithm>
#endif

namespace ca {

// What the units are compared with is an ASCII character; the first unit has the lowest bit. Every
// processor of the x86-64 family has the instructions that the first variant needs. The second one
// says the same without them.
#if defined(__SSE2__)

class Units64 {
 public:
  explicit Units64(const char16_t* units) {
    for (__m128i& bytes : bytes_) {
      bytes = _mm_packus_epi16(loadLatin(units), loadLatin(units + 8));
      units += 16;
    }
  }

  std::uint64_t equal(char c) const {
    const __m128i wanted = _mm_set1_epi8(c);
    return gather([&](__m128i bytes) { return _mm_cmpeq_epi8(bytes, wanted); });
  }

  // Which of them lie in a range of `count` characters from `first` on.
  std::uint64_t within(char first, unsigned count) const {
    return gather([&](__m128i bytes) { return isWithin(bytes, first, count); });
  }

  // ASCII letters, digits and `_`.
  std::uint64_t nameParts() const {
    return gather([&](__m128i bytes) {
      const __m128i lower = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
      const __m128i others =
          _mm_or_si128(isWithin(bytes, '0', 10), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('_')));
      return _mm_or_si128(isWithin(lower, 'a', 26), others);
    });
  }

 private:
  // Eight units; what is above U+00FF becomes U+00FF.
  static __m128i loadLatin(const char16_t* units) {
    const __m128i loaded = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
    return _mm_sub_epi16(loaded, _mm_subs_epu16(loaded, _mm_set1_epi16(0xFF)));
  }

  // Differences wrap, so one comparison does.
  static __m128i isWithin(__m128i bytes, char first, unsigned count) {
    const __m128i offset = _mm_sub_epi8(bytes, _mm_set1_epi8(first));
    const __m128i beyond = _mm_subs_epu8(offset, _mm_set1_epi8(static_cast<char>(count - 1)));
    return _mm_cmpeq_epi8(beyond, _mm_setzero_si128());
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

  std::uint64_t equal(char c) const {
    return gather([&](std::uint8_t byte) { return byte == static_cast<std::uint8_t>(c); });
  }

  std::uint64_t within(char first, unsigned count) const {
    return gather([&](std::uint8_t byte) { return isWithin(byte, first, count); });
  }

  std::uint64_t nameParts() const {
    return gather([](std::uint8_t byte) {
      const auto lower = static_cast<std::uint8_t>(byte | 0x20U);
      return isWithin(lower, 'a', 26) || isWithin(byte, '0', 10) || byte == '_';
    });
  }

 private:
  static bool isWithin(std::uint8_t byte, char first, unsigned count) {
    return static_cast<std::uint8_t>(byte - first) < count;
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
