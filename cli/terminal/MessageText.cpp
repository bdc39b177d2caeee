#include "cli/terminal/MessageText.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "conversions/LineDiff.h"

namespace soca::cli {
namespace {

constexpr std::string_view plain = "\x1b[m";
constexpr std::string_view caretColor = "\x1b[1;32m";

struct Severity {
  // The mark after the place of a message.
  std::string_view mark;
  std::string_view color;
};

constexpr auto severities = std::to_array<Severity>({{": error:", "\x1b[1;31m"},
                                                     {": warning:", "\x1b[1;35m"},
                                                     {": note:", "\x1b[36m"},
                                                     {"  hint:", "\x1b[36m"}});

// Whether the line has only a caret, below a line of source.
bool isCaretLine(std::string_view line) {
  const std::size_t first = line.find_first_not_of(' ');
  return first != std::string_view::npos && line.substr(first).starts_with("| ") &&
         line.ends_with("^\n") && line.find_first_not_of(" \t", first + 1) == line.size() - 2;
}

// Only the first of the marks in the line is coloured: the following text may be from a file.
void addColored(std::string_view line, std::string& text) {
  std::size_t first = std::string_view::npos;
  const Severity* severity = nullptr;
  for (const Severity& row : severities) {
    const std::size_t place = line.find(row.mark);
    if (place >= first) continue;
    first = place;
    severity = &row;
  }
  if (severity == nullptr) {
    text += line;
    return;
  }
  // The mark begins with two characters that are not part of the word.
  text.append(line.substr(0, first + 2)).append(severity->color);
  text.append(severity->mark.substr(2)).append(plain);
  text.append(line.substr(first + severity->mark.size()));
}

}  // namespace

std::string colorMessages(std::string_view lines) {
  std::string text;
  for (const std::string_view line : splitIntoLines(lines)) {
    if (isCaretLine(line)) {
      text.append(line.substr(0, line.size() - 2)).append(caretColor).append("^");
      text.append(plain).append("\n");
    } else {
      addColored(line, text);
    }
  }
  return text;
}

}  // namespace soca::cli
