#include "reports/FailureText.h"

#include <fmt/core.h>

#include <new>
#include <system_error>

#include "reports/text/Escapes.h"

namespace soca {

void printFailure(ReportOutput& output, const Failure& failure) {
  output.complain(fmt::format("{}: {}", failure.id, failure.message));
  std::string text = failure.excerpt;
  // With superclasses the message may be about another class than the named one.
  const bool namesClass = failure.message.find(failure.className) != std::string::npos;
  if (failure.argument != failure.className && !namesClass) {
    text += fmt::format("  in the update of class '{}'\n", withEscapesInLine(failure.className));
  }
  text += hintLines(failure.hints);
  if (!text.empty()) output.printMessages(text);
}

std::string faultText(const std::exception& fault) {
  if (dynamic_cast<const std::bad_alloc*>(&fault) != nullptr) return "there is not enough memory";
  const auto* error = dynamic_cast<const std::system_error*>(&fault);
  const auto noThread = std::errc::resource_unavailable_try_again;
  if (error == nullptr || error->code() != noThread) return fault.what();
  return fmt::format("no more threads can be started: {}; --jobs takes a smaller number",
                     fault.what());
}

std::string hintLines(const std::vector<std::string>& hints) {
  std::string text;
  for (const std::string& hint : hints)
    text += fmt::format("  hint: {}\n", withEscapesInLine(hint));
  return text;
}

}  // namespace soca
