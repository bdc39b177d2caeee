// Reads files as texts.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "platform/text/FileText.h"
#include "platform/text/UString.h"

namespace fl::filesystem {

// A file or folder that cannot be read. `what` has the path and the reason, in UTF-8.
class ReadError : public std::runtime_error {
 public:
  ReadError(const std::string& path, const std::string& reason)
      : std::runtime_error(path + ": " + reason), path_(path) {}

  const std::string& path() const { return path_; }
  std::string reason() const { return what() + path_.size() + 2; }

 private:
  std::string path_;
};

// A file that is larger than the caller's limit.
class TooLargeError : public ReadError {
 public:
  using ReadError::ReadError;
};

// Throws ReadError for the error number.
[[noreturn]] void throwReadError(const std::string& path, int error);

// Whether the error number means that there is no file or folder. All others mean that it is not
// known whether there is one.
bool isNotThere(int error);

// Identifies one state of a file. Times are nanoseconds since 1970.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t modificationTime = 0;
  std::int64_t changeTime = 0;

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

// The stamp of the file at the path, after following links; empty if there is none. Throws
// ReadError if that cannot be determined.
std::optional<FileStamp> stampOf(const std::string& path);

// The same; under a view in force, the stamp may have been looked up earlier under the view.
// Failures are not cached.
std::optional<FileStamp> stampInView(const std::string& path);

// The state of a file when it was read: its stamp, and the encoding of its text.
struct FileState {
  FileStamp stamp;
  EncodingType encoding = EncodingType::utf8;
};

struct SourceFileText {
  ustring text;
  EncodingType encoding = EncodingType::utf8;
  // Taken before the file was read.
  FileStamp stamp;
  // Whether it was read within 20 ms of its time of change. A later change may then have the same
  // stamp, so the text must not be cached under it. A change after these 20 ms gives another stamp,
  // even while the file is being read.
  bool recentlyChanged = false;
};

// The text of the regular file at a native path in UTF-8. Overlay texts are ignored. Throws
// ReadError if there is no file, for anything other than a regular file (without waiting for it),
// without permission, and TooLargeError for a file of more than `maximumSize` bytes, which is not
// read at all.
SourceFileText readSourceFile(const std::string& path, std::uint64_t maximumSize);

// The bytes of the file, under the same conditions.
std::string readFileBytes(const std::string& path, std::uint64_t maximumSize);

// The first `size` bytes of a regular file of any size, or all of a shorter one.
std::string readHeadOfFile(const std::string& path, std::size_t size);

}  // namespace fl::filesystem
