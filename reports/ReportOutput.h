// Where reports go.
#pragma once

#include <cstddef>
#include <string_view>

namespace soca {

// Data goes to one stream, messages for people to another. The client decides what these are.
class ReportOutput {
 public:
  virtual ~ReportOutput() = default;

  // Whether data may have colours.
  virtual bool colorsOut() const = 0;
  // Data, as it is.
  virtual void print(std::string_view text) = 0;
  // Lines of messages.
  virtual void printMessages(std::string_view lines) = 0;
  // One line "soca: <what>", of a failure, and of anything else.
  virtual void complain(std::string_view what) = 0;
  virtual void tell(std::string_view what) = 0;

 protected:
  ReportOutput() = default;
  ReportOutput(const ReportOutput&) = default;
  ReportOutput& operator=(const ReportOutput&) = default;
};

}  // namespace soca
