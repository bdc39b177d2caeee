// The update of one file as single replacements, for tools that apply them.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/Extent.h"
#include "platform/text/FileText.h"
#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// Of an edit that every action makes: with any edit, the engine deletes a last line that is blank
// or only a continuation.
inline constexpr std::size_t everyAction = std::numeric_limits<std::size_t>::max();

// A part of the old text and its replacement. The texts differ, and either may be empty. If words
// change, the parts are whole words.
struct TextEdit {
  // In UTF-16 code units of the old text.
  std::size_t offset = 0;
  std::size_t length = 0;
  fl::ustring text;
  // Those that make it, each once, the first one of its first line in front; an index, or
  // `everyAction`.
  std::vector<std::size_t> actions;
};

struct TextEdits {
  // In the order of the text, with unchanged text between any two of them.
  std::vector<TextEdit> edits;
  // Pairs of actions that share an edit, or a line of one; the second may be `everyAction`.
  std::vector<std::pair<std::size_t, std::size_t>> shared;
};

// Together they give exactly the new text of `planned`, which must have its new lines; without a
// new text there are no edits.
TextEdits findTextEdits(const PlannedClass& planned);

// Words, runs of blanks, and all other characters singly. Letters beyond ASCII are parts of words.
std::vector<fl::ustring_view> splitIntoTokens(fl::ustring_view text);

// A text edit in a file.
struct FileEdit {
  // In the old text.
  Extent extent;
  // The same in bytes of the old file.
  std::size_t offset = 0;
  std::size_t length = 0;
  // In UTF-8 for any encoding of the file.
  std::string text;
  // The first action that makes it, or `everyAction`.
  std::size_t action = 0;
  // The indices of the conversions that make it; empty if they were not requested.
  std::vector<std::size_t> conversions;
};

// Finds the places of replacements in the file of a text, which must outlive this object.
class EditPlacer {
 public:
  EditPlacer(fl::ustring_view oldText, fl::EncodingType encoding)
      : text_(oldText), encoding_(encoding) {}

  // Offset and length are in UTF-16 code units. Replacements must be given in the order of the
  // text. The edit has no action and no conversions.
  FileEdit place(std::size_t offset, std::size_t length, fl::ustring_view text);

 private:
  void moveTo(std::size_t offset);
  std::size_t sizeOf(char16_t unit) const;

  fl::ustring_view text_;
  fl::EncodingType encoding_;
  std::size_t next_ = 0;
  SourcePosition position_;
  std::size_t bytes_ = 0;
};

struct FileEdits {
  std::vector<FileEdit> edits;
  std::vector<std::pair<std::size_t, std::size_t>> shared;
};

// The text edits of the class, for a file of this encoding.
FileEdits findFileEdits(const PlannedClass& planned, fl::EncodingType encoding);

}  // namespace soca
