// Where the program prints: data to standard output, all else to standard error.
#pragma once

#include <string>
#include <string_view>

#include "reports/ReportOutput.h"

namespace soca::cli {

// A stream to a file descriptor, which it does not own. What is left in the buffer at the end is
// lost unless `flush` was called.
class Output {
 public:
  explicit Output(int descriptor) : descriptor_(descriptor) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // A failure to write is remembered, and from then on everything is dropped.
  void write(std::string_view text);
  void flush();

  // The number of the first error, 0 if all went well.
  int error() const { return error_; }
  bool isTerminal() const;
  // Of the terminal, in columns; 0 if it is none, or won't tell.
  std::size_t width() const;

 private:
  void writeThrough(std::string_view text);

  int descriptor_;
  int error_ = 0;
  std::string buffer_;
};

enum class ColorType { automatic, always, never };

// The two streams of a process. On a terminal what comes later is shown later, whichever stream it
// went to, and below it there can be a status line, which stays below.
class Console : public ReportOutput {
 public:
  Console(int outDescriptor, int errDescriptor) : out_(outDescriptor), err_(errDescriptor) {}

  // Decides about colours. Unless there are to be some always or never, the environment has a say,
  // then the terminals: none with NO_COLOR, some with FORCE_COLOR, otherwise on a terminal that is
  // not dumb. An empty variable counts as none.
  void setColor(ColorType color);
  bool colorsOut() const override { return colorsOut_; }
  // For lines that are broken on standard error: of the terminal, or what reads well in a file.
  std::size_t width() const;

  // Whether standard error is a terminal on which a line can be taken away again.
  bool hasStatusLine() const;
  // `line` is printable ASCII and shorter than the terminal is wide.
  void showStatus(std::string_view line);
  void clearStatus();

  void print(std::string_view text) override;
  // Everything printed so far goes out first.
  void printError(std::string_view text);
  // Lines of messages, which get colours and lose what a terminal would obey.
  void printMessages(std::string_view lines) override;
  // One line "soca: <what>", of something that went wrong, and of something else.
  void complain(std::string_view what) override;
  void tell(std::string_view what) override;

  // Sends everything out. False, with a complaint, if some of the data could not be written.
  bool finish();

 private:
  void printLine(std::string_view what, std::string_view color);

  Output out_;
  Output err_;
  bool colorsOut_ = false;
  bool colorsErr_ = false;
  // The status line, while it is shown.
  std::string status_;
};

}  // namespace soca::cli
