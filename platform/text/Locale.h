// The locales of messages and of 16-bit text streams.
#pragma once

#include <locale>

namespace fl::i18n {

// The language of messages. There is one: texts are in English.
class Locale {
 public:
  static const Locale& global();

 private:
  Locale() = default;
};

namespace facet {

// A locale with which a stream of `char16_t` prints integers as plain decimal digits, and bools as
// `true` and `false` under `std::boolalpha`.
//
//   std::basic_ostringstream<char16_t> stream;
//   stream.imbue(fl::i18n::facet::get_global_std_locale());
std::locale get_global_std_locale();

}  // namespace facet
}  // namespace fl::i18n
