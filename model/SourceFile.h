// The editable image of one source text.
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

// Holds one record a line. Edits rewrite records in place and mark them, and lines are flagged as
// gone but never removed: the line numbers of the unedited text stay valid through any number of
// edits. Columns are not adjusted, so of two edits on one line the later one comes first.
//
// Construct, replace as often as needed, remove emptied lines once, then take the text.
//
// Blanks are U+0009 to U+000D and U+0020.
class SourceFile {
 public:
  // Flags of a line.
  // Emits nothing. A line that gets this flag loses its text and all other flags at once.
  static constexpr std::uint64_t LineDeleted = 1;
  // The text of the next line goes on behind this one's.
  static constexpr std::uint64_t LineNoNewline = 2;
  // An edit touched the line, so that it goes away should it be blank in the end.
  static constexpr std::uint64_t LineModified = 4;

  // Options of `replace`: what the replaced span takes along behind its end.
  static constexpr std::uint64_t ConsumeListDelimiter = 1;  // a `;` or `,`
  static constexpr std::uint64_t ConsumeAmpersand = 2;      // then a `&`

  struct Line {
    // Without its U+000A; a U+000D stays. Belongs to the file, and is valid until the next edit.
    fl::ustring_view text;
    std::uint64_t flags = 0;
    // Where the text is kept once it is edited; null before.
    fl::ustring* edited = nullptr;
  };

  // Points into the text, which must outlive the file.
  explicit SourceFile(fl::ustring_view text);
  // Keeps the text.
  template <std::same_as<fl::ustring> Text>
  explicit SourceFile(Text&& text)
      : SourceFile(std::make_unique<const fl::ustring>(std::forward<Text>(text))) {}
  // A temporary that cannot be moved from would not outlive the file.
  template <std::same_as<const fl::ustring> Text>
  explicit SourceFile(Text&& text) = delete;
  SourceFile(SourceFile&&) = default;
  SourceFile& operator=(SourceFile&&) = default;

  // The lines, joined.
  fl::ustring getText() const;

  // Puts `text` in place of the extent. Text with a line end in it stays in the one record.
  //
  // Throws std::out_of_range if the extent starts behind the end of its line. Ends the process if a
  // delimiter that the options name is not to be found.
  void replace(const fl::ustring& text, std::uint64_t options, Extent extent);

  // Where `replace` with these options and this extent would meet something else than a delimiter
  // and end the process; nothing if it would not.
  std::optional<SourcePosition> findMissingDelimiter(std::uint64_t options,
                                                     const Extent& extent) const;

  // The place behind the first of `delimiters` that follows `position`, over blanks and
  // continuations. A line that ends and a comment that begins first end the search where they are;
  // anything else ends the process.
  SourcePosition movePastDelimiter(SourcePosition position, const fl::ustring& delimiters) const;

  // Takes away the lines that edits left blank or with nothing but a continuation. The last line is
  // treated as edited in any case.
  void removeEmptiedLines();

  std::uint64_t getNumberOfLines() const { return lines_.size(); }
  const std::vector<Line>& getLines() const { return lines_; }

 private:
  struct DelimiterSearch;

  explicit SourceFile(std::unique_ptr<const fl::ustring> text);

  DelimiterSearch searchDelimiter(SourcePosition position, fl::ustring_view delimiters) const;
  // The line on which the text goes on behind a continuation on `line`.
  std::uint64_t lineBehindContinuation(std::uint64_t line) const;
  SourcePosition endWithDelimiters(SourcePosition end, std::uint64_t options) const;
  // Takes what the extent holds of all lines but its first.
  void cutFollowingLines(const Extent& extent);
  void closeGapBehind(const Extent& extent);
  // Replaces `count` code units of one line. Throws std::out_of_range for a column behind its end.
  void replaceInLine(Line& line, std::uint64_t column, std::uint64_t count,
                     const fl::ustring& text);

  // Few lines of a file are ever edited: the others point into the text, which may be this.
  std::unique_ptr<const fl::ustring> ownText_;
  std::vector<Line> lines_;
  std::deque<fl::ustring> editedTexts_;
};

}  // namespace soca
