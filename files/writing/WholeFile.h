// A file that appears at its path only as a whole.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "files/writing/Descriptor.h"

namespace soca {

// Written piece by piece beside its path. A file that is there keeps its content until `commit`,
// and for good without it. Links are not followed: a link is replaced by the file.
class WholeFile {
 public:
  // Throws std::runtime_error with the reason if no file can be made there.
  explicit WholeFile(std::string path);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  // After a failure, all further text is dropped.
  void write(std::string_view text);
  // Puts the file at its path. Returns the reason if that fails, or if any text was dropped.
  std::optional<std::string> commit();

 private:
  void writeOut();

  std::string path_;
  std::string temporary_;
  Descriptor file_;
  std::string buffer_;
  // The number of the first error, or 0.
  int error_ = 0;
};

}  // namespace soca
