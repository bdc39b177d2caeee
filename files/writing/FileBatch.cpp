#include "files/writing/FileBatch.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <optional>
#include <utility>

#include "files/targets/ClassRoots.h"
#include "files/writing/Descriptor.h"
#include "files/writing/FileAttributes.h"
#include "files/writing/FileWriter.h"
#include "files/writing/Journal.h"

namespace soca {
namespace {

// A run's folder, which is deleted unless a file was written.
class NewRun {
 public:
  NewRun(const RunStore* store, const RunStore::Lock* lock)
      : store_(store), lock_(lock), number_(store->add(*lock)) {}
  ~NewRun() {
    if (!isKept_) store_->remove(*lock_, number_);
  }
  NewRun(const NewRun&) = delete;
  NewRun& operator=(const NewRun&) = delete;

  RunNumber number() const { return number_; }
  std::string folder() const { return store_->folderOf(number_); }
  void keep() { isKept_ = true; }

 private:
  const RunStore* store_;
  const RunStore::Lock* lock_;
  RunNumber number_;
  bool isKept_ = false;
};

// Resolves the links of paths. Files of one folder follow each other, so the last folder is cached.
class LinkResolver {
 public:
  // The path itself if it does not exist.
  std::string resolve(const std::string& path) {
    const std::size_t slash = path.rfind('/') + 1;
    if (path.compare(0, slash, folder_) != 0) {
      folder_ = path.substr(0, slash);
      resolvedFolder_ = resolveLinks(folder_).value_or(folder_);
      if (!resolvedFolder_.ends_with('/')) resolvedFolder_ += '/';
    }
    std::string resolved = resolvedFolder_ + path.substr(slash);
    struct stat status = {};
    const bool isLink = ::lstat(resolved.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
    return isLink ? resolveLinks(resolved).value_or(resolved) : resolved;
  }

 private:
  std::string folder_;
  std::string resolvedFolder_;
};

// A file to be saved in the journal.
struct OldFile {
  SavedFile file;
  std::string bytes;
};

// Reads `size` bytes, or fewer if the file ends before.
std::string readBytes(const Descriptor& file, std::uint64_t size) {
  std::string bytes(size, '\0');
  std::size_t count = 0;
  while (count < bytes.size()) {
    const ssize_t more = ::read(file.number(), bytes.data() + count, bytes.size() - count);
    if (more < 0 && errno == EINTR) continue;
    if (more <= 0) break;
    count += static_cast<std::size_t>(more);
  }
  bytes.resize(count);
  return bytes;
}

// Empty if the file is no longer the one from which the new bytes were computed.
std::optional<OldFile> readOldFile(std::string path, const FileChange& change) {
  const Descriptor file(
      ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY | O_NOFOLLOW));
  const auto isUnchanged = [&](struct stat& status) {
    return ::fstat(file.number(), &status) == 0 && isOf(status, change.stamp);
  };
  struct stat status = {};
  if (!file.isOpen() || !isUnchanged(status)) return std::nullopt;
  OldFile old;
  old.bytes = readBytes(file, change.stamp.size);
  if (old.bytes.size() != change.stamp.size || !isUnchanged(status)) return std::nullopt;
  old.file.path = std::move(path);
  old.file.mode = status.st_mode & 07777U;
  old.file.modificationTime = change.stamp.modificationTime;
  old.file.oldDigest = digestOf(old.bytes);
  old.file.newDigest = change.newDigest;
  return old;
}

class Batch {
 public:
  Batch(const RunStore* store, const RunStore::Lock* lock, const GoesOn* goesOn,
        const OnStep* onStep)
      : run_(store, lock),
        journal_(run_.folder()),
        writer_(journal_.token()),
        goesOn_(goesOn),
        onStep_(onStep) {}

  BatchResult write(const std::vector<FileChange>& changes,
                    const std::function<std::string(std::size_t)>& newBytes) {
    result_.isWritten.resize(changes.size());
    saveAll(changes);
    if (!saved_.empty() && goesOn()) {
      journal_.begin();
      stageAll(changes, newBytes);
      commitAll();
    }
    return std::move(result_);
  }

 private:
  // A file in the journal.
  struct Saved {
    std::size_t change = 0;
    std::string path;
    bool isWritten = false;
  };

  bool goesOn() {
    if (!result_.isCutShort && !(*goesOn_)()) result_.isCutShort = true;
    return !result_.isCutShort;
  }

  void count(StepType step, std::size_t files) const {
    if (*onStep_) (*onStep_)(step, files);
  }

  void saveAll(const std::vector<FileChange>& changes);
  void save(std::size_t number, const FileChange& change);
  void stageAll(const std::vector<FileChange>& changes,
                const std::function<std::string(std::size_t)>& newBytes);
  void commitAll();
  void commit(std::size_t index, const std::optional<std::string>& flushFailure);
  void finish();
  FileNumbers leftFiles() const;

  NewRun run_;
  JournalWriter journal_;
  FileWriter writer_;
  const GoesOn* goesOn_;
  const OnStep* onStep_;
  LinkResolver resolver_;
  std::vector<Saved> saved_;
  // The numbers in the journal of the files that the writer has staged.
  std::vector<std::size_t> staged_;
  BatchResult result_;
};

void Batch::saveAll(const std::vector<FileChange>& changes) {
  for (std::size_t i = 0; i < changes.size() && goesOn(); ++i) {
    save(i, changes[i]);
    count(StepType::saving, changes.size());
  }
}

void Batch::save(std::size_t number, const FileChange& change) {
  auto old = readOldFile(resolver_.resolve(change.path), change);
  if (!old) {
    result_.failures.emplace(number, changedReason);
    return;
  }
  journal_.save(old->file, old->bytes);
  saved_.push_back({number, std::move(old->file.path)});
}

void Batch::stageAll(const std::vector<FileChange>& changes,
                     const std::function<std::string(std::size_t)>& newBytes) {
  for (std::size_t number = 0; number < saved_.size() && goesOn(); ++number) {
    const Saved& saved = saved_[number];
    const std::string bytes = newBytes(saved.change);
    auto reason = writer_.stage(number, {saved.path, bytes, changes[saved.change].stamp});
    if (reason) {
      result_.failures.emplace(saved.change, std::move(*reason));
    } else {
      staged_.push_back(number);
    }
    count(StepType::staging, saved_.size());
  }
}

void Batch::commitAll() {
  if (!goesOn()) return;
  const auto flushFailure = writer_.flush();
  for (std::size_t i = 0; i < staged_.size() && goesOn(); ++i) {
    commit(i, flushFailure);
    count(StepType::replacing, staged_.size());
  }
  if (result_.writtenCount > 0) finish();
}

void Batch::commit(std::size_t index, const std::optional<std::string>& flushFailure) {
  Saved& saved = saved_[staged_[index]];
  auto reason = flushFailure ? flushFailure : writer_.commit(index);
  if (reason) {
    result_.failures.emplace(saved.change, std::move(*reason));
    return;
  }
  run_.keep();
  saved.isWritten = true;
  result_.isWritten[saved.change] = true;
  ++result_.writtenCount;
}

void Batch::finish() {
  result_.run = run_.number();
  writer_.discardRest();
  result_.warnings = writer_.warnings();
  constexpr std::string_view whatFollows = "the next run takes back what this one has written";
  try {
    result_.problem = writer_.flushFolders().value_or("");
    journal_.finish(leftFiles());
  } catch (const JournalError& error) {
    result_.problem = fmt::format("{}; {}", error.what(), whatFollows);
  } catch (const std::bad_alloc&) {
    result_.problem = fmt::format("there is not enough memory; {}", whatFollows);
  }
}

FileNumbers Batch::leftFiles() const {
  FileNumbers left;
  for (std::size_t number = 0; number < saved_.size(); ++number) {
    if (!saved_[number].isWritten) left.push_back(static_cast<std::uint32_t>(number));
  }
  return left;
}

}  // namespace

BatchResult writeFiles(const RunStore& store, const RunStore::Lock& lock,
                       const std::vector<FileChange>& changes,
                       const std::function<std::string(std::size_t)>& newBytes,
                       const GoesOn& goesOn, const OnStep& onStep) {
  BatchResult result = Batch(&store, &lock, &goesOn, &onStep).write(changes, newBytes);
  store.prune(lock);
  return result;
}

}  // namespace soca
