// The walk from a class through its superclasses.
#pragma once

#include <queue>
#include <set>
#include <vector>

#include "platform/text/UString.h"

namespace soca {

// Breadth first, each name once, at its first place; cycles are allowed. Names are compared
// exactly.
class ClassWalk {
 public:
  explicit ClassWalk(const fl::ustring& className) { add({className}); }

  bool isDone() const { return pending_.empty(); }
  // The next class. Requires `!isDone()`.
  fl::ustring next();
  // Adds the superclasses of a class, without those added before.
  void add(const std::vector<fl::ustring>& superClassNames);

 private:
  std::set<fl::ustring> met_;
  std::queue<fl::ustring> pending_;
};

}  // namespace soca
