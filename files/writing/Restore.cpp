#include "files/writing/Restore.h"

#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include "files/writing/FileAttributes.h"
#include "files/writing/FileWriter.h"
#include "platform/paths/SourceReader.h"

namespace soca {
namespace {

// The current state of a file of the run.
struct CurrentFile {
  enum class Type { old, written, changed, failed };
  Type type = Type::failed;
  // For files that are neither the old nor the written one.
  std::string reason;
  fl::filesystem::FileStamp stamp;
};

CurrentFile compareBytes(const SavedFile& file, const struct stat& status,
                         const fl::filesystem::FileStamp& stamp) {
  using Type = CurrentFile::Type;
  constexpr std::string_view changed = "it changed since the run wrote it";
  if (stamp.size != file.oldDigest.size && stamp.size != file.newDigest.size) {
    return {Type::changed, std::string(changed), stamp};
  }
  const Digest digest = digestOf(fl::filesystem::readFileBytes(file.path, stamp.size));
  if (digest == file.oldDigest) return {Type::old, {}, stamp};
  if (digest != file.newDigest) return {Type::changed, std::string(changed), stamp};
  if ((status.st_mode & 07777U) != file.mode) {
    return {Type::changed, "its permissions changed since the run wrote it", stamp};
  }
  if (status.st_nlink > 1) return {Type::changed, "it has more than one hard link now", stamp};
  return {Type::written, {}, stamp};
}

CurrentFile lookAt(const SavedFile& file) {
  using Type = CurrentFile::Type;
  struct stat status = {};
  if (::lstat(file.path.c_str(), &status) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return {Type::changed, "it is gone", {}};
    return {Type::failed, fmt::format("it can't be looked at: {}", std::strerror(errno)), {}};
  }
  if (!S_ISREG(status.st_mode)) return {Type::changed, "it is no regular file any more", {}};
  try {
    const auto stamp = fl::filesystem::stampOf(file.path);
    if (!stamp || !isOf(status, *stamp)) return {Type::changed, std::string(changedReason), {}};
    return compareBytes(file, status, *stamp);
  } catch (const fl::filesystem::ReadError& error) {
    return {Type::failed, fmt::format("it could not be read: {}", error.what()), {}};
  }
}

class Restorer {
 public:
  Restorer(const Journal* journal, const GoesOn* goesOn, const OnStep* onStep)
      : journal_(journal), goesOn_(goesOn), onStep_(onStep), writer_(journal->token()) {}

  void removeTemporaries(const FileNumbers& numbers) {
    const auto& files = journal_->files();
    for (const std::uint32_t number : numbers) {
      const std::string path = temporaryPath(files[number].path, journal_->token(), number);
      if (::unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR) continue;
      result_.failed.push_back({path, fmt::format("it could not be removed: {}", errorText())});
    }
  }

  void restore(const FileNumbers& numbers) {
    for (const std::uint32_t number : numbers) {
      if (!goesOn()) break;
      stage(number);
      count(StepType::staging, numbers.size());
    }
    if (goesOn()) commitAll();
    writer_.discardRest();
    result_.warnings = writer_.warnings();
    if (const auto reason = writer_.flushFolders()) throw JournalError(*reason);
  }

  void preview(const FileNumbers& numbers) {
    for (const std::uint32_t number : numbers) {
      if (!goesOn()) break;
      const auto stamp = findWritten(number);
      if (stamp && oldBytes(number)) result_.restored.push_back(number);
    }
  }

  RestoreResult takeResult() { return std::move(result_); }

  // The files that are finished, in ascending order.
  FileNumbers takeDone() {
    std::ranges::sort(done_);
    return std::move(done_);
  }

  bool isComplete() const { return !result_.isCutShort && result_.failed.empty(); }

 private:
  static std::string errorText() { return std::strerror(errno); }

  bool goesOn() {
    if (!result_.isCutShort && !(*goesOn_)()) result_.isCutShort = true;
    return !result_.isCutShort;
  }

  void count(StepType step, std::size_t files) const {
    if (*onStep_) (*onStep_)(step, files);
  }

  void commitAll() {
    const auto flushFailure = writer_.flush();
    for (std::size_t i = 0; i < staged_.size() && goesOn(); ++i) {
      commit(i, flushFailure);
      count(StepType::replacing, staged_.size());
    }
  }

  void commit(std::size_t index, const std::optional<std::string>& flushFailure) {
    const std::uint32_t number = staged_[index];
    if (const auto reason = flushFailure ? flushFailure : writer_.commit(index)) {
      result_.failed.push_back({journal_->files()[number].path, *reason});
      return;
    }
    result_.restored.push_back(number);
    done_.push_back(number);
  }

  // The stamp of the file if it is as the run wrote it; otherwise that is recorded.
  std::optional<fl::filesystem::FileStamp> findWritten(std::uint32_t number) {
    const SavedFile& file = journal_->files()[number];
    CurrentFile current = lookAt(file);
    switch (current.type) {
      case CurrentFile::Type::old:
        done_.push_back(number);
        break;
      case CurrentFile::Type::changed:
        result_.changed.push_back({file.path, std::move(current.reason)});
        break;
      case CurrentFile::Type::failed:
        result_.failed.push_back({file.path, std::move(current.reason)});
        break;
      case CurrentFile::Type::written:
        return current.stamp;
    }
    return std::nullopt;
  }

  // Empty if the journal no longer has them, which is recorded.
  std::optional<std::string_view> oldBytes(std::uint32_t number) {
    try {
      return journal_->oldBytes(number);
    } catch (const JournalError& error) {
      // A later attempt would fail too.
      result_.changed.push_back({journal_->files()[number].path, error.what()});
      return std::nullopt;
    }
  }

  void stage(std::uint32_t number) {
    const auto stamp = findWritten(number);
    const auto bytes = stamp ? oldBytes(number) : std::nullopt;
    if (!bytes) return;
    const SavedFile& file = journal_->files()[number];
    auto reason = writer_.stage(number, {file.path, *bytes, *stamp, file.modificationTime});
    if (reason) {
      result_.failed.push_back({file.path, std::move(*reason)});
    } else {
      staged_.push_back(number);
    }
  }

  const Journal* journal_;
  const GoesOn* goesOn_;
  const OnStep* onStep_;
  FileWriter writer_;
  FileNumbers staged_;
  FileNumbers done_;
  RestoreResult result_;
};

}  // namespace

RestoreResult repairRun(Journal& journal, const GoesOn& goesOn, const OnStep& onStep) {
  Restorer restorer(&journal, &goesOn, &onStep);
  const FileNumbers numbers = journal.unfinished();
  restorer.removeTemporaries(numbers);
  restorer.restore(numbers);
  if (restorer.isComplete()) journal.endUndo(restorer.takeDone());
  return restorer.takeResult();
}

RestoreResult undoRun(Journal& journal, const FileNumbers& numbers, const GoesOn& goesOn,
                      const OnStep& onStep) {
  journal.beginUndo(numbers);
  Restorer restorer(&journal, &goesOn, &onStep);
  // Those in a folder that was away when the run was repaired.
  restorer.removeTemporaries(numbers);
  restorer.restore(numbers);
  journal.endUndo(restorer.takeDone());
  return restorer.takeResult();
}

RestoreResult previewUndo(const Journal& journal, const FileNumbers& numbers,
                          const GoesOn& goesOn) {
  const OnStep noStep;
  Restorer restorer(&journal, &goesOn, &noStep);
  restorer.preview(numbers);
  return restorer.takeResult();
}

}  // namespace soca
