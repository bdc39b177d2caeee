#include "reports/text/SyntaxReport.h"

#include <fmt/core.h>

#include <algorithm>
#include <vector>

#include "platform/text/Conversions.h"
#include "reports/text/Escapes.h"

namespace soca {
namespace {

// The numbers of code units before and after an error that are shown of a line.
constexpr std::size_t shownBefore = 100;
constexpr std::size_t shownBehind = 60;

bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00U) == 0xDC00U; }

// Finds lines by number, for increasing numbers only.
class LineReader {
 public:
  explicit LineReader(fl::ustring_view text) : text_(text) {}

  // Without the line end; empty after the last line.
  fl::ustring_view line(std::uint64_t number) {
    for (; number_ < number && start_ != fl::ustring_view::npos; ++number_) {
      const std::size_t end = text_.find(u'\n', start_);
      start_ = end == fl::ustring_view::npos ? end : end + 1;
    }
    if (start_ == fl::ustring_view::npos) return {};
    return text_.substr(start_, text_.find(u'\n', start_) - start_);
  }

 private:
  fl::ustring_view text_;
  std::uint64_t number_ = 0;
  std::size_t start_ = 0;
};

// Replaces what a terminal would obey by U+FFFD, which has the width of one character, for the
// caret in the next line.
void hideUnsafe(fl::ustring& text) {
  for (char16_t& unit : text) {
    if (unit != u'\t' && isUnsafe(unit)) unit = u'\xFFFD';
  }
}

// The part of a line that is shown, and the place of the error in it.
struct Window {
  fl::ustring text;
  std::size_t column = 0;
};

Window cutWindow(fl::ustring_view line, std::size_t column) {
  column = std::min(column, line.size());
  std::size_t first = column > shownBefore ? column - shownBefore : 0;
  std::size_t last = std::min(line.size(), column + shownBehind);
  if (first < line.size() && isLowSurrogate(line[first])) ++first;
  if (last < line.size() && isLowSurrogate(line[last])) ++last;
  Window window;
  if (first > 0) window.text = u"...";
  window.column = window.text.size() + column - first;
  window.text += line.substr(first, last - first);
  if (last < line.size()) window.text += u"...";
  hideUnsafe(window.text);
  return window;
}

// Blanks with the width of the text, in characters; tabs stay tabs.
std::string indentOf(fl::ustring_view text) {
  std::string indent;
  for (const char16_t unit : text) {
    if (!isLowSurrogate(unit)) indent += unit == u'\t' ? '\t' : ' ';
  }
  return indent;
}

std::string formatError(std::string_view file, const ca::Diagnostic& diagnostic,
                        fl::ustring_view line) {
  if (line.ends_with(u'\r')) line.remove_suffix(1);
  const Window window = cutWindow(line, diagnostic.column);
  return fmt::format("{}:{}:{}: error: {}\n{:>5} | {}\n      | {}^\n", withEscapesInLine(file),
                     diagnostic.line + 1, diagnostic.column + 1,
                     withEscapesInLine(diagnostic.message), diagnostic.line + 1,
                     fl::i18n::to_string(window.text),
                     indentOf(fl::ustring_view(window.text).substr(0, window.column)));
}

}  // namespace

std::string formatSyntaxErrors(std::string_view file, const ca::AnalysisResult& analysis,
                               std::size_t limit) {
  const std::vector<ca::Diagnostic>& diagnostics = analysis.diagnostics();
  LineReader lines(analysis.sourceTextView());
  std::string text;
  for (std::size_t i = 0; i < diagnostics.size() && i < limit; ++i) {
    text += formatError(file, diagnostics[i], lines.line(diagnostics[i].line));
  }
  if (diagnostics.size() > limit) {
    text += fmt::format("{}: and {} more errors\n", withEscapesInLine(file),
                        diagnostics.size() - limit);
  }
  return text;
}

}  // namespace soca
