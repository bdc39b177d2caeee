// The output of the program: data to standard output, everything else to standard error.
#pragma once

#include <string>
#include <string_view>

#include "reports/ReportOutput.h"

namespace soca::cli {

// A stream to a file descriptor that it does not own. Buffered text is lost unless `flush` is
// called.
class Output {
 public:
  explicit Output(int descriptor);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // After a failure to write, the error is kept and all further text is dropped.
  void write(std::string_view text);
  void flush();

  // The number of the first error, or 0.
  int error() const { return error_; }
  bool isTerminal() const { return isTerminal_; }
  // The width of the terminal in columns; 0 if there is no terminal or its width is unknown.
  std::size_t width() const;

 private:
  void writeThrough(std::string_view text);

  int descriptor_;
  bool isTerminal_;
  int error_ = 0;
  std::string buffer_;
};

enum class ColorType { automatic, always, never };

// The two streams of a process. On a terminal their texts appear in the order of the calls, with an
// optional status line below them.
class Console : public ReportOutput {
 public:
  Console(int outDescriptor, int errDescriptor) : out_(outDescriptor), err_(errDescriptor) {}

  // Decides whether to use colours. Unless `color` is always or never, this depends on the
  // environment and the terminals: NO_COLOR disables them, FORCE_COLOR enables them; otherwise a
  // terminal that is not dumb has them. An empty variable is treated as not set.
  void setColor(ColorType color);
  bool colorsOut() const override { return colorsOut_; }
  // The width for wrapped lines on standard error: that of the terminal, or a default for files.
  std::size_t width() const;

  // Whether standard error is a terminal on which a line can be erased.
  bool hasStatusLine() const;
  // `line` must be printable ASCII and shorter than the width of the terminal.
  void showStatus(std::string_view line);
  void clearStatus();

  void print(std::string_view text) override;
  void printColored(std::string_view text) override;
  // Flushes standard output first.
  void printError(std::string_view text);
  // Prints lines of messages, with colours and escapes.
  void printMessages(std::string_view lines) override;
  // Both print one line "soca: <what>": for failures, and for other messages.
  void complain(std::string_view what) override;
  void tell(std::string_view what) override;

  // To be called before another process writes to the same files.
  void flush();
  // Flushes both streams, and returns whether all data could be written; if not, there was a
  // message, unless the reader is gone.
  bool finish();
  // Whether a stream could not be written because nothing reads it any more.
  bool isReaderGone() const;

 private:
  void printLine(std::string_view what, std::string_view color);

  Output out_;
  Output err_;
  bool colorsOut_ = false;
  bool colorsErr_ = false;
  // The current status line.
  std::string status_;
};

}  // namespace soca::cli
