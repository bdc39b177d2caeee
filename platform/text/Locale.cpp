#include "platform/text/Locale.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

// The standard library declares ctype for any character type, but defines it for char and wchar_t
// only. Streams need it to widen the fill character and line ends.
namespace std {

template <>
ctype<char16_t>::~ctype() = default;

template <>
bool ctype<char16_t>::do_is(mask wanted, char16_t c) const {
  return c < 0x80 && use_facet<ctype<char>>(locale::classic()).is(wanted, static_cast<char>(c));
}

template <>
const char16_t* ctype<char16_t>::do_is(const char16_t* low, const char16_t* high,
                                       mask* found) const {
  const auto& narrow = use_facet<ctype<char>>(locale::classic());
  for (; low != high; ++low, ++found) {
    *found = *low < 0x80 ? narrow.table()[*low] : mask();
  }
  return high;
}

template <>
const char16_t* ctype<char16_t>::do_scan_is(mask wanted, const char16_t* low,
                                            const char16_t* high) const {
  return find_if(low, high, [&](char16_t c) { return do_is(wanted, c); });
}

template <>
const char16_t* ctype<char16_t>::do_scan_not(mask wanted, const char16_t* low,
                                             const char16_t* high) const {
  return find_if_not(low, high, [&](char16_t c) { return do_is(wanted, c); });
}

template <>
char16_t ctype<char16_t>::do_toupper(char16_t c) const {
  return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

template <>
const char16_t* ctype<char16_t>::do_toupper(char16_t* low, const char16_t* high) const {
  for (; low != high; ++low) *low = do_toupper(*low);
  return high;
}

template <>
char16_t ctype<char16_t>::do_tolower(char16_t c) const {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
}

template <>
const char16_t* ctype<char16_t>::do_tolower(char16_t* low, const char16_t* high) const {
  for (; low != high; ++low) *low = do_tolower(*low);
  return high;
}

template <>
char16_t ctype<char16_t>::do_widen(char c) const {
  return static_cast<unsigned char>(c);
}

template <>
const char* ctype<char16_t>::do_widen(const char* low, const char* high, char16_t* to) const {
  for (; low != high; ++low, ++to) *to = do_widen(*low);
  return high;
}

template <>
char ctype<char16_t>::do_narrow(char16_t c, char otherwise) const {
  return c < 0x80 ? static_cast<char>(c) : otherwise;
}

template <>
const char16_t* ctype<char16_t>::do_narrow(const char16_t* low, const char16_t* high,
                                           char otherwise, char* to) const {
  for (; low != high; ++low, ++to) *to = do_narrow(*low, otherwise);
  return high;
}

}  // namespace std

namespace fl::i18n {
namespace {

using Iterator = std::ostreambuf_iterator<char16_t>;

// Prints numbers without a numpunct facet, which does not exist for char16_t.
class PlainNumbers : public std::num_put<char16_t> {
 public:
  using std::num_put<char16_t>::num_put;

 protected:
  Iterator do_put(Iterator out, std::ios_base& stream, char16_t fill, bool value) const override {
    if ((stream.flags() & std::ios_base::boolalpha) == 0) {
      return do_put(out, stream, fill, static_cast<long>(value));
    }
    return putPadded(out, stream, fill, value ? "true" : "false");
  }
  Iterator do_put(Iterator out, std::ios_base& stream, char16_t fill, long value) const override {
    return putDigits(out, stream, fill, value);
  }
  Iterator do_put(Iterator out, std::ios_base& stream, char16_t fill,
                  unsigned long value) const override {
    return putDigits(out, stream, fill, value);
  }
  Iterator do_put(Iterator out, std::ios_base& stream, char16_t fill,
                  long long value) const override {
    return putDigits(out, stream, fill, value);
  }
  Iterator do_put(Iterator out, std::ios_base& stream, char16_t fill,
                  unsigned long long value) const override {
    return putDigits(out, stream, fill, value);
  }

 private:
  using std::num_put<char16_t>::do_put;

  template <class Integer>
  static Iterator putDigits(Iterator out, std::ios_base& stream, char16_t fill, Integer value) {
    char digits[24];
    const std::to_chars_result result = std::to_chars(digits, std::end(digits), value);
    return putPadded(out, stream, fill, {digits, result.ptr});
  }

  // Pads to the width of the stream and resets the width to 0, as all formatted output does.
  static Iterator putPadded(Iterator out, std::ios_base& stream, char16_t fill,
                            std::string_view text) {
    const auto length = static_cast<std::streamsize>(text.size());
    const std::streamsize padding = std::max<std::streamsize>(stream.width(0) - length, 0);
    const bool isLeft = (stream.flags() & std::ios_base::adjustfield) == std::ios_base::left;
    if (!isLeft) out = std::fill_n(out, padding, fill);
    for (const char c : text) *out++ = static_cast<unsigned char>(c);
    return isLeft ? std::fill_n(out, padding, fill) : out;
  }
};

// A facet with an additional reference is never deleted by a locale.
constexpr std::size_t keptForEver = 1;

}  // namespace

const Locale& Locale::global() {
  static const Locale locale;
  return locale;
}

namespace facet {

std::ctype<char16_t>& characterFacet() {
  static auto* const facet = new std::ctype<char16_t>(keptForEver);
  return *facet;
}

std::num_put<char16_t>& numberFacet() {
  static auto* const facet = new PlainNumbers(keptForEver);
  return *facet;
}

}  // namespace facet
}  // namespace fl::i18n
