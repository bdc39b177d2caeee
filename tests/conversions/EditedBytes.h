// The text of a file after edits.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "conversions/FileEdits.h"

namespace soca::testing {

inline std::string applyAll(const std::vector<FileEdit>& edits, const std::string& text) {
  std::string newText;
  std::size_t position = 0;
  for (const FileEdit& edit : edits) {
    newText += text.substr(position, edit.offset - position) + edit.text;
    position = edit.offset + edit.length;
  }
  return newText + text.substr(position);
}

}  // namespace soca::testing
