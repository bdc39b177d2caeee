// A source text that can be edited.
#pragma once

#include <concepts>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "model/Extent.h"
#include "model/SourcePosition.h"
#include "platform/text/UString.h"

namespace soca {

// Holds one record for each line. Edits change records in place and flag them; lines are flagged as
// deleted but never removed, so the line numbers of the unedited text stay valid through any number
// of edits. Columns are not adjusted: of two edits on one line the right one must be made first.
//
// Usage: construct, call `replace` any number of times, `removeEmptiedLines` once, then `getText`.
//
// Blanks are U+0009 to U+000D and U+0020.
class SourceFile {
 public:
  // Flags of a line.
  // The line is not printed. Setting it clears the text and all other flags.
  static constexpr std::uint64_t LineDeleted = 1;
  // The text of the next line follows without a line end.
  static constexpr std::uint64_t LineNoNewline = 2;
  // The line was edited, and is removed if it is blank in the end.
  static constexpr std::uint64_t LineModified = 4;

  // Options of `replace`: what is replaced in addition, after the end of the extent.
  static constexpr std::uint64_t ConsumeListDelimiter = 1;  // a `;` or `,`
  static constexpr std::uint64_t ConsumeAmpersand = 2;      // then a `&`

  struct Line {
    // Without its U+000A; a U+000D stays. Owned by the file, and valid until the next edit.
    fl::ustring_view text;
    std::uint64_t flags = 0;
    // The text of an edited line; null before the first edit.
    fl::ustring* edited = nullptr;
  };

  // Refers to the text, which must outlive the file.
  explicit SourceFile(fl::ustring_view text);
  // Takes ownership of the text.
  template <std::same_as<fl::ustring> Text>
  explicit SourceFile(Text&& text)
      : SourceFile(std::make_unique<const fl::ustring>(std::forward<Text>(text))) {}
  // A temporary that cannot be moved from would not outlive the file.
  template <std::same_as<const fl::ustring> Text>
  explicit SourceFile(Text&& text) = delete;
  SourceFile(SourceFile&&) = default;
  SourceFile& operator=(SourceFile&&) = default;

  // The text of all lines.
  fl::ustring getText() const;

  // Replaces the extent by `text`. A line end in `text` does not split the record.
  //
  // Throws std::out_of_range if the extent starts after the end of its line. Ends the process if a
  // delimiter of the options is not found.
  void replace(const fl::ustring& text, std::uint64_t options, Extent extent);

  // The position at which `replace` with these options and this extent would find another character
  // than a delimiter and end the process; empty if it would not.
  std::optional<SourcePosition> findMissingDelimiter(std::uint64_t options,
                                                     const Extent& extent) const;

  // The position after the first of `delimiters` that follows `position`, over blanks and
  // continuations. If the line ends or a comment begins before that, the result is this place; any
  // other character ends the process.
  SourcePosition movePastDelimiter(SourcePosition position, const fl::ustring& delimiters) const;

  // The end of what `replace` replaces with these options and an extent with this end. Ends the
  // process like it.
  SourcePosition endWithDelimiters(SourcePosition end, std::uint64_t options) const;

  // Removes the lines that edits left blank or with only a continuation. The last line is always
  // treated as edited.
  void removeEmptiedLines();
  // Whether an edited line with this text is removed.
  static bool isEmptied(fl::ustring_view text);

  std::uint64_t getNumberOfLines() const { return lines_.size(); }
  const std::vector<Line>& getLines() const { return lines_; }

 private:
  struct DelimiterSearch;

  explicit SourceFile(std::unique_ptr<const fl::ustring> text);

  DelimiterSearch searchDelimiter(SourcePosition position, fl::ustring_view delimiters) const;
  // The line that continues `line` after a continuation.
  std::uint64_t lineBehindContinuation(std::uint64_t line) const;
  // Removes the part of the extent after its first line.
  void cutFollowingLines(const Extent& extent);
  void closeGapBehind(const Extent& extent);
  // Replaces `count` code units of one line. Throws std::out_of_range for a column after its end.
  void replaceInLine(Line& line, std::uint64_t column, std::uint64_t count,
                     const fl::ustring& text);

  // Only edited lines have a text of their own: the others refer to the text, which may be this.
  std::unique_ptr<const fl::ustring> ownText_;
  std::vector<Line> lines_;
  std::deque<fl::ustring> editedTexts_;
};

}  // namespace soca
