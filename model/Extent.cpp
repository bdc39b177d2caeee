#include "model/Extent.h"

namespace soca {

std::basic_ostream<char16_t>& operator<<(std::basic_ostream<char16_t>& out, const Extent& extent) {
  return out << u"From " << extent.start << u" to " << extent.end;
}

}  // namespace soca
