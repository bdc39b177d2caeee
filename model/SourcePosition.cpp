#include "model/SourcePosition.h"

namespace soca {

std::basic_ostream<char16_t>& operator<<(std::basic_ostream<char16_t>& out,
                                         const SourcePosition& position) {
  return out << u'(' << position.line << u',' << position.column << u')';
}

}  // namespace soca
