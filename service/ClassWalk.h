// The walk from a class up to its superclasses.
#pragma once

#include <queue>
#include <set>
#include <vector>

#include "platform/text/UString.h"

namespace soca {

// Breadth first, each name once, at the place where it was met first; a cycle does no harm. Names
// are compared exactly.
class ClassWalk {
 public:
  explicit ClassWalk(const fl::ustring& className) { add({className}); }

  bool isDone() const { return pending_.empty(); }
  // The next class. The walk must not be done.
  fl::ustring next();
  // Adds the superclasses of a class, less those that were met before.
  void add(const std::vector<fl::ustring>& superClassNames);

 private:
  std::set<fl::ustring> met_;
  std::queue<fl::ustring> pending_;
};

}  // namespace soca
