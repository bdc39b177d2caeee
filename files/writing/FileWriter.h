// Replaces files, each as a whole or not at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/paths/SourceReader.h"

namespace soca {

// A file that is to get new bytes.
struct Replacement {
  // Absolute, without links.
  std::string path;
  std::string_view bytes;
  // Of the file that the new bytes were computed from.
  fl::filesystem::FileStamp stamp;
  // In nanoseconds since 1970, if the new file is not to have that of its making.
  std::optional<std::int64_t> modificationTime = std::nullopt;
};

// Why the file at the path can't be replaced by another; nothing if it can. Links are followed.
std::optional<std::string> findReasonNotToReplace(const std::string& path);

// What is said of a file that is not the one that was read any more.
inline constexpr std::string_view changedReason = "it changed since it was read";

// A batch of files that are replaced together: all are staged, then flushed, then committed, then
// the folders flushed. A file that can't be written stays as it was and does not keep the others
// from being replaced.
class FileWriter {
 public:
  // The token tells the temporary files of this batch from those of any other.
  explicit FileWriter(std::string token) : token_(std::move(token)) {}
  ~FileWriter() { discardRest(); }
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  // Writes the new file beside the old one, at `temporaryPath` for the number, with the old one's
  // owner, permissions and attributes. Gives the reason if that is impossible; the file is then
  // left alone.
  std::optional<std::string> stage(std::size_t number, const Replacement& replacement);

  // Brings all staged files to the disk: many at once cost far less than one by one. Gives the
  // reason if that fails; none is to be committed then.
  std::optional<std::string> flush() const;

  // Puts the new file in place of the old one, unless that changed since it was read: then gives
  // the reason. `index` counts the files that were staged with success.
  std::optional<std::string> commit(std::size_t index);

  // Takes away what was staged and not committed.
  void discardRest();

  // Brings to the disk what the folders of the files hold now.
  std::optional<std::string> flushFolders() const;

  std::size_t size() const { return staged_.size(); }

 private:
  struct StagedFile {
    std::string target;
    std::string temporary;
    fl::filesystem::FileStamp stamp;
    // Whether the temporary file is there.
    bool isPending = true;
  };

  std::string token_;
  std::vector<StagedFile> staged_;
};

}  // namespace soca
