// Says which class was at work when a broken promise of the system ends the process.
#pragma once

#include <string>
#include <string_view>

namespace soca {

// Installs the handler for the process.
void installInternalErrorHandler();

// While it lives, the class is the one that this thread works on. They nest.
class CurrentClass {
 public:
  // In UTF-8.
  explicit CurrentClass(std::string_view className);
  ~CurrentClass();
  CurrentClass(const CurrentClass&) = delete;
  CurrentClass& operator=(const CurrentClass&) = delete;

 private:
  std::string name_;
  const std::string* outer_;
};

}  // namespace soca
