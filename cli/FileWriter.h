// Replaces files, each as a whole or not at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/paths/SourceReader.h"

namespace soca::cli {

// A file that is to get new bytes.
struct Replacement {
  std::string path;
  std::string bytes;
  // Of the file that the new bytes were computed from.
  fl::filesystem::FileStamp stamp;
};

// Why the file at the path can't be replaced by another; nothing if it can. Links are followed.
std::optional<std::string> findReasonNotToReplace(const std::string& path);

// A batch of files that are replaced together: all are staged, then flushed, then committed. A file
// that can't be written stays as it was and does not keep the others from being replaced.
class FileWriter {
 public:
  FileWriter() = default;
  // What was staged and not replaced is taken away again.
  ~FileWriter();
  FileWriter(const FileWriter&) = delete;
  FileWriter& operator=(const FileWriter&) = delete;

  // Writes the new file beside the old one, under a name of its own and with the old one's
  // permissions. Gives the reason if that is
  // impossible; the file is then left alone.
  std::optional<std::string> stage(const Replacement& replacement);

  // Brings all staged files to the disk: many at once cost far less than one by one. Gives the
  // reason if that fails; none is to be committed then.
  std::optional<std::string> flush() const;

  // Puts the new file in place of the old one, unless that changed since it was read: then gives
  // the reason. `index` counts the files that were staged with success.
  std::optional<std::string> commit(std::size_t index);

  std::size_t size() const { return staged_.size(); }

 private:
  struct StagedFile {
    // The file itself, links followed.
    std::string target;
    std::string temporary;
    // Of the file system that both are on.
    std::uint64_t device = 0;
    fl::filesystem::FileStamp stamp;
    bool isPending = true;
  };

  std::vector<StagedFile> staged_;
};

}  // namespace soca::cli
