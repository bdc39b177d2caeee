// Replaces files, each completely or not at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/paths/SourceReader.h"

namespace soca {

// A file and its new bytes.
struct Replacement {
  // Absolute, without links.
  std::string path;
  std::string_view bytes;
  // The stamp of the file from which the new bytes were computed.
  fl::filesystem::FileStamp stamp;
  // In nanoseconds since 1970; if empty, the new file has the current time.
  std::optional<std::int64_t> modificationTime = std::nullopt;
};

// The reason why the file at the path cannot be replaced; empty if it can. Links are followed.
std::optional<std::string> findReasonNotToReplace(const std::string& path);

// The reason for a file that is no longer the one that was read.
inline constexpr std::string_view changedReason = "it changed since it was read";

// A batch of files that are replaced together: all are staged, flushed, and committed, and then the
// folders are flushed. A file that cannot be written stays unchanged, and the others are still
// replaced.
class FileWriter {
 public:
  // The token distinguishes the temporary files of this batch from all others.
  explicit FileWriter(std::string token) : token_(std::move(token)) {}
  ~FileWriter() { discardRest(); }
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  // Writes the new file beside the old one, at `temporaryPath` for the number, with the old one's
  // owner, permissions and attributes. Returns the reason if that fails; the old file is then
  // unchanged.
  std::optional<std::string> stage(std::size_t number, const Replacement& replacement);

  // Flushes all staged files to the disk, which is much faster for many files together than for
  // each. Returns the reason if that fails; no file must be committed then.
  std::optional<std::string> flush() const;

  // Replaces the old file by the new one, unless it changed since it was read; then returns the
  // reason. `index` counts the files that were staged successfully.
  std::optional<std::string> commit(std::size_t index);

  // Deletes the staged files that were not committed.
  void discardRest();

  // Lines on the committed files that lack an extended attribute of the old ones.
  std::vector<std::string> warnings() const;

  // Flushes the folders of the files to the disk.
  std::optional<std::string> flushFolders() const;

  std::size_t size() const { return staged_.size(); }

 private:
  struct StagedFile {
    std::string target;
    std::string temporary;
    fl::filesystem::FileStamp stamp;
    // Whether the temporary file exists.
    bool isPending = true;
    bool isCommitted = false;
    // Extended attributes of the old file that the new one lacks.
    std::vector<std::string> forbiddenAttributes;
  };

  std::string token_;
  std::vector<StagedFile> staged_;
};

}  // namespace soca
