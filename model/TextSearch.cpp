#include "model/TextSearch.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace soca {
namespace {

// For each low byte of a code unit, how far the pattern may move on when that unit stands under the
// pattern's last one. Units of one low byte share an entry, which is never too large for any.
class SkipTable {
 public:
  explicit SkipTable(fl::ustring_view pattern) {
    skips_.fill(limited(pattern.size()));
    for (std::size_t i = 0; i + 1 < pattern.size(); ++i) {
      skips_[slotOf(pattern[i])] = limited(pattern.size() - 1 - i);
    }
  }

  std::size_t skipOf(char16_t unit) const { return skips_[slotOf(unit)]; }

 private:
  static std::size_t slotOf(char16_t unit) { return unit & 0xFFU; }
  static std::uint8_t limited(std::size_t skip) {
    return static_cast<std::uint8_t>(std::min<std::size_t>(skip, 0xFF));
  }

  std::array<std::uint8_t, 256> skips_;
};

}  // namespace

std::size_t findBehindDot(fl::ustring_view text, fl::ustring_view name) {
  const fl::ustring pattern = u'.' + fl::ustring(name);
  const SkipTable skips(pattern);
  const std::size_t length = pattern.size();
  for (std::size_t end = length; end <= text.size(); end += skips.skipOf(text[end - 1])) {
    if (text.substr(end - length, length) == pattern) return end;
  }
  return fl::ustring_view::npos;
}

}  // namespace soca
