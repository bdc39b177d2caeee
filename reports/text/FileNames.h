// The names of files in the output of the program.
#pragma once

#include <string>
#include <string_view>

#include "files/targets/ClassRoots.h"

namespace soca {

// The printed form of absolute paths.
class FileNames {
 public:
  // `roots` must outlive this object.
  explicit FileNames(const ClassRoots* roots);

  // Relative to the current folder if the file is in it, with escapes.
  std::string shown(const std::string& path) const;

  // For the command line: relative to the current folder if it is in it or a few folders above it.
  std::string typed(const std::string& folder) const;

  // For a diff: the file without links, relative to the current folder if it is in it, otherwise
  // relative to its root.
  std::string inDiff(const std::string& path) const;

 private:
  const ClassRoots* roots_;
  std::string currentFolder_;
};

// A name in a diff: in double quotes with escapes if it has characters outside printable ASCII,
// quotes or backslashes, as git writes it.
std::string quoteForDiff(std::string_view name);

}  // namespace soca
