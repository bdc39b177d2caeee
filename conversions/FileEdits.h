// The update of one file as single replacements, for tools that make them on their own.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "model/Extent.h"
#include "platform/text/FileText.h"
#include "service/UpdatePlan.h"

namespace soca {

// A stretch of the old file and what stands in its place afterwards. The texts differ, and either
// may be empty. Stretches are whole words where words change.
struct FileEdit {
  // In the old text.
  Extent extent;
  // The same in bytes of the old file.
  std::size_t offset = 0;
  std::size_t length = 0;
  // In UTF-8, whatever the encoding of the file.
  std::string text;
  // The first action that it comes from.
  std::size_t action = 0;
};

struct FileEdits {
  // In the order of the file, with old text between any two of them.
  std::vector<FileEdit> edits;
  // Pairs of actions that have an edit, or a line of one, in common.
  std::vector<std::pair<std::size_t, std::size_t>> shared;
};

// What an update changes in a file of this encoding. Together the edits make exactly the new text
// of `planned`, which must not stop at a missing delimiter.
FileEdits findFileEdits(const PlannedClass& planned, fl::EncodingType encoding);

}  // namespace soca
