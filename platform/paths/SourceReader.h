// Reads files as texts, or says why it can't.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include "platform/text/FileText.h"
#include "platform/text/UString.h"

namespace fl::filesystem {

// A file that can't be read. `what` has the path and the reason, in UTF-8.
class ReadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What tells one state of a file from another. Times are nanoseconds since 1970.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t modificationTime = 0;
  std::int64_t changeTime = 0;

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

// The stamp of what is at the path now, links followed; nothing if nothing is there.
std::optional<FileStamp> stampOf(const std::string& path);

// The same; under a view in force it may be the stamp of an earlier moment of the view.
std::optional<FileStamp> stampInView(const std::string& path);

// A file as it was read: its stamp, and how its bytes encode the text.
struct FileState {
  FileStamp stamp;
  EncodingType encoding = EncodingType::utf8;
};

struct SourceFileText {
  ustring text;
  EncodingType encoding = EncodingType::utf8;
  // As of the moment before it was read.
  FileStamp stamp;
  // Whether it was read within 20 ms of its time of change. A later change may then have the same
  // stamp, so the text must not be kept under it. A change after these 20 ms gives another stamp,
  // even while the file is being read.
  bool recentlyChanged = false;
};

// The text of the regular file at a native path in UTF-8. Texts that lie over the path don't count.
// Throws ReadError for no file, a folder, anything else that is no regular file (without waiting
// for it), no permission, and a file of more than `maximumSize` bytes, which is not read at all.
SourceFileText readSourceFile(const std::string& path, std::uint64_t maximumSize);

// The bytes of the file, likewise.
std::string readFileBytes(const std::string& path, std::uint64_t maximumSize);

}  // namespace fl::filesystem
