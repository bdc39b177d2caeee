// Methods that one class of a run loses and another gains.
#pragma once

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "cli/Outcome.h"

namespace soca::cli {

// A method is deleted as redundant because no superclass defines it. Should the same run give a
// superclass a method of that name, the class inherits it from then on, and behaves differently.
class MethodChanges {
 public:
  void add(const ClassOutcome& outcome);

  // One sentence for each such method.
  std::vector<std::string> warnings() const;

 private:
  using MethodOfClass = std::pair<std::string, std::string>;

  // The classes that gain a method, by the method's name.
  std::unordered_map<std::string, std::vector<std::string>> gaining_;
  // Class and method.
  std::vector<MethodOfClass> deleted_;
};

}  // namespace soca::cli
