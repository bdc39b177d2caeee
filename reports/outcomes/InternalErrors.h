// Reports the current class when an internal error ends the process.
#pragma once

#include <string>
#include <string_view>

namespace soca {

// Installs the handler for the process.
void installInternalErrorHandler();

// During its life, the class is the current one of this thread. Objects may be nested.
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
