// The locales of messages and of 16-bit text streams.
#pragma once

#include <locale>

namespace fl::i18n {

// The language of messages, which is always English.
class Locale {
 public:
  static const Locale& global();

 private:
  Locale() = default;
};

namespace facet {

// The facets of the locale below, which live as long as the process.
std::ctype<char16_t>& characterFacet();
std::num_put<char16_t>& numberFacet();

// A locale with which a stream of `char16_t` prints integers as plain decimal digits, and bools as
// `true` and `false` under `std::boolalpha`.
//
//   std::basic_ostringstream<char16_t> stream;
//   stream.imbue(fl::i18n::facet::get_global_std_locale());
//
// Inline, because a stream finds a facet by an id, and each library with hidden symbols has its own
// copy of the id.
inline std::locale get_global_std_locale() {
  static const std::locale locale(std::locale(std::locale::classic(), &characterFacet()),
                                  &numberFacet());
  return locale;
}

}  // namespace facet
}  // namespace fl::i18n
