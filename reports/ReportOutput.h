// The output of reports.
#pragma once

#include <cstddef>
#include <string_view>

namespace soca {

// Two streams, one for data and one for messages to users. The client defines them.
class ReportOutput {
 public:
  virtual ~ReportOutput() = default;

  // Whether data may have colours.
  virtual bool colorsOut() const = 0;
  // Prints data unchanged, but on a terminal with escapes for control characters.
  virtual void print(std::string_view text) = 0;
  // Prints data that have their escapes and colours already.
  virtual void printColored(std::string_view text) = 0;
  // Prints lines of messages.
  virtual void printMessages(std::string_view lines) = 0;
  // Both print one line "soca: <what>": for failures, and for other messages.
  virtual void complain(std::string_view what) = 0;
  virtual void tell(std::string_view what) = 0;

 protected:
  ReportOutput() = default;
  ReportOutput(const ReportOutput&) = default;
  ReportOutput& operator=(const ReportOutput&) = default;
};

}  // namespace soca
