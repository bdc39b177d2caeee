// Methods that one class of a run loses and another gains.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "conversions/ClassUpdate.h"

namespace soca {

// A method is deleted as redundant because no superclass defines it. Should the same run give a
// superclass a method of that name, the class inherits it from then on, and behaves differently.
class MethodChanges {
 public:
  void add(const ClassUpdate& update);

  // One sentence for each such method.
  std::vector<std::string> warnings();

 private:
  // Per class so little is kept that a run may be of any size: of what is gained no more than a
  // hash of class and method, sorted once all are known.
  std::vector<std::size_t> gained_;
  std::set<std::string> gainedNames_;
  // The classes that lose a method, by the method's name, each with a line end.
  std::map<std::string, std::string> losing_;
};

}  // namespace soca
