// Methods that one class of a run loses while another one gains them.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "conversions/ClassUpdate.h"

namespace soca {

// A method is deleted as redundant if no superclass defines it. If the same run adds a method of
// that name to a superclass, the class inherits it, and behaves differently.
class MethodChanges {
 public:
  void add(const ClassUpdate& update);

  // One sentence for each such method.
  std::vector<std::string> warnings();

 private:
  // Small for each class, so that a run may have any size: of a gained method only a hash of class
  // and method, sorted once all are known.
  std::vector<std::size_t> gained_;
  std::set<std::string> gainedNames_;
  // The classes that lose a method, by the name of the method, each with a line end.
  std::map<std::string, std::string> losing_;
};

}  // namespace soca
