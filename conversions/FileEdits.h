// The update of one file as single replacements, for tools that apply them.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "model/Extent.h"
#include "platform/text/FileText.h"
#include "service/UpdatePlan.h"

namespace soca {

// Of an edit that every action makes: with any edit, the engine deletes a last line that is blank
// or only a continuation.
inline constexpr std::size_t everyAction = std::numeric_limits<std::size_t>::max();

// A part of the old file and its replacement. The texts differ, and either may be empty. If words
// change, the parts are whole words.
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

struct FileEdits {
  // In the order of the file, with unchanged text between any two of them.
  std::vector<FileEdit> edits;
  // Pairs of actions that share an edit, or a line of one; the second may be `everyAction`.
  std::vector<std::pair<std::size_t, std::size_t>> shared;
};

// The edits for a file of this encoding. Together they give exactly the new text of `planned`,
// which must have its new lines; without a new text there are no edits.
FileEdits findFileEdits(const PlannedClass& planned, fl::EncodingType encoding);

}  // namespace soca
