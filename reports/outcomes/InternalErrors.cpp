#include "reports/outcomes/InternalErrors.h"

#include <fmt/core.h>
#include <unistd.h>

#include "platform/failure/Terminate.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"
#include "reports/text/Escapes.h"

namespace soca {
namespace {

thread_local const std::string* currentClass = nullptr;

std::string placeOf(const std::string& className) {
  try {
    const auto description = sotarn::describeClass(className);
    if (description != nullptr && !description->sourcePath.empty()) return description->sourcePath;
  } catch (const fl::filesystem::ReadError& error) {
    return error.path();
  }
  return "a file that is not known";
}

void sayClass(const char* message, const char*, int, const char*) {
  if (currentClass == nullptr) return;
  const std::string text = fmt::format(
      "soca: internal error with class '{}' in {}: {}; nothing of this run is kept\n",
      withEscapesInLine(*currentClass), withEscapesInLine(placeOf(*currentClass)), message);
  // The process ends even if this cannot be written.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace

void installInternalErrorHandler() { foundation::core::diag::setTerminateHandler(sayClass); }

CurrentClass::CurrentClass(std::string_view className) : name_(className), outer_(currentClass) {
  currentClass = &name_;
}

CurrentClass::~CurrentClass() { currentClass = outer_; }

}  // namespace soca
