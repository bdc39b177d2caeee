#include "cli/terminal/Console.h"

#include <fmt/core.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "cli/terminal/MessageText.h"
#include "cli/terminal/Signals.h"
#include "reports/text/Escapes.h"

namespace soca::cli {
namespace {

constexpr std::size_t usualWidth = 100;
constexpr std::string_view clearToLineEnd = "\x1b[K";
constexpr std::size_t bufferSize = std::size_t{1} << 16U;

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool isForced() {
  const char* value = std::getenv("FORCE_COLOR");
  return value != nullptr && *value != '\0' && std::strcmp(value, "0") != 0;
}

bool isDumbTerminal() {
  const char* term = std::getenv("TERM");
  return term == nullptr || std::strcmp(term, "dumb") == 0;
}

bool wantsColor(ColorType color, const Output& output) {
  if (color != ColorType::automatic) return color == ColorType::always;
  if (isSet("NO_COLOR")) return false;
  if (isForced()) return true;
  return output.isTerminal() && !isDumbTerminal();
}

}  // namespace

Output::Output(int descriptor) : descriptor_(descriptor), isTerminal_(::isatty(descriptor) == 1) {}

void Output::write(std::string_view text) {
  if (buffer_.size() + text.size() > bufferSize) flush();
  if (text.size() > bufferSize) {
    writeThrough(text);
  } else {
    buffer_ += text;
  }
}

void Output::flush() {
  writeThrough(buffer_);
  buffer_.clear();
}

void Output::writeThrough(std::string_view text) {
  while (!text.empty() && error_ == 0) {
    const ssize_t written = ::write(descriptor_, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR || wasInterrupted()) {
      // After an interrupt there may be no reader any more.
      error_ = errno;
    }
  }
}

std::size_t Output::width() const {
  winsize size = {};
  return ::ioctl(descriptor_, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

std::size_t Console::width() const {
  const std::size_t width = err_.width();
  return width == 0 ? usualWidth : width;
}

void Console::setColor(ColorType color) {
  colorsOut_ = wantsColor(color, out_);
  colorsErr_ = wantsColor(color, err_);
}

bool Console::hasStatusLine() const { return err_.isTerminal() && !isDumbTerminal(); }

void Console::showStatus(std::string_view line) {
  if (out_.isTerminal()) out_.flush();
  // Written over the previous one by a single call, so that it does not flicker.
  err_.write("\r");
  err_.write(line);
  err_.write(clearToLineEnd);
  err_.flush();
  status_ = line;
}

void Console::clearStatus() {
  if (!status_.empty()) showStatus({});
}

void Console::print(std::string_view text) {
  if (!out_.isTerminal()) return out_.write(text);
  printColored(withEscapes(text));
}

void Console::printColored(std::string_view text) {
  if (status_.empty() || !out_.isTerminal()) return out_.write(text);
  const std::string status = status_;
  clearStatus();
  out_.write(text);
  showStatus(status);
}

void Console::printError(std::string_view text) {
  const std::string status = status_;
  clearStatus();
  out_.flush();
  err_.write(text);
  err_.flush();
  if (!status.empty()) showStatus(status);
}

void Console::printMessages(std::string_view lines) {
  const std::string escaped = withEscapes(lines);
  printError(colorsErr_ ? colorMessages(escaped) : escaped);
}

void Console::complain(std::string_view what) { printLine(what, "\x1b[1;31m"); }

void Console::tell(std::string_view what) { printLine(what, "\x1b[1m"); }

void Console::printLine(std::string_view what, std::string_view color) {
  constexpr std::string_view program = "soca:";
  std::string line = fmt::format("{} {}\n", program, withEscapesInLine(what));
  if (colorsErr_) {
    line = fmt::format("{}{}\x1b[m{}", color, program, colorMessages(line).substr(program.size()));
  }
  printError(line);
}

bool Console::isReaderGone() const { return out_.error() == EPIPE || err_.error() == EPIPE; }

void Console::flush() {
  clearStatus();
  out_.flush();
  err_.flush();
}

bool Console::finish() {
  flush();
  if (wasInterrupted() && isReaderGone()) return false;
  if (out_.error() == 0 || out_.error() == EINTR) return true;
  complain(std::string("standard output could not be written: ") + std::strerror(out_.error()));
  return false;
}

}  // namespace soca::cli
