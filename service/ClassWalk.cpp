#include "service/ClassWalk.h"

#include <utility>

namespace soca {

fl::ustring ClassWalk::next() {
  fl::ustring name = std::move(pending_.front());
  pending_.pop();
  return name;
}

void ClassWalk::add(const std::vector<fl::ustring>& superClassNames) {
  for (const fl::ustring& name : superClassNames) {
    if (met_.insert(name).second) pending_.push(name);
  }
}

}  // namespace soca
