// The new files of a run with `--write`, stored until its last class is done and then written.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/terminal/Console.h"
#include "files/writing/FileBatch.h"
#include "files/writing/Repair.h"
#include "files/writing/RunStore.h"
#include "files/writing/Spool.h"
#include "reports/Summary.h"
#include "reports/outcomes/Outcome.h"

namespace soca::cli {

class WriteQueue {
 public:
  // A class in the order of the run.
  struct Entry {
    std::string className;
    std::string file;
    Spool::Place data;
    bool hasNewFile = false;
    // Whether it would change, but another entry has the new file.
    bool sharesFile = false;
    // Only for an entry with a new file.
    Spool::Place newBytes;
    fl::filesystem::FileStamp stamp;
    Digest newDigest;
    ClassCounts counts;
  };

  // The result for an entry.
  enum class FateType { hasNoNewFile, written, failed, leftOut };

  // Repairs interrupted runs first, so it must be constructed before the first class is read.
  // `console` must outlive the queue. Throws JournalError if there is no folder for a journal.
  explicit WriteQueue(Console* console);

  // Both throw std::runtime_error if the stored data cannot be written or read.
  void add(const ClassOutcome& outcome, bool hasNewFile);
  std::string dataOf(const Entry& entry) { return data_.take(entry.data); }

  // Replaces an entry that was computed again, or drops one that failed.
  void replace(std::size_t entry, const ClassOutcome& outcome);
  void drop(std::size_t entry);

  // Waits until no other program writes, and repairs what it may have left. Returns false if there
  // is nothing to write or to repair, or if the run was interrupted meanwhile.
  bool lock();

  // Writes all new files, if the lock is held. If it throws JournalError or std::runtime_error, no
  // file was written.
  void write();

  const std::vector<Entry>& entries() const { return entries_; }
  // To be called after `write`. Without it, all new files are left out.
  FateType fateOf(std::size_t entry) const;
  const std::string& reasonOfFailure(std::size_t entry) const;
  const BatchResult& result() const { return result_; }
  // Whether the repair of an interrupted run failed, so that the next run has to finish it.
  bool hasFailedRepair() const { return hasFailedRepair_; }

 private:
  // Under the lock.
  void repair(const RunStore::Lock& lock);
  Entry makeEntry(const ClassOutcome& outcome, bool hasNewFile);

  Console* console_;
  RunStore store_;
  std::optional<RunStore::Lock> lock_;
  // The runs whose repair was reported before the first class was read.
  std::vector<RepairedRun> repaired_;
  bool hasFailedRepair_ = false;
  Spool data_;
  Spool newBytes_;
  std::vector<Entry> entries_;
  // The entries with a new file; the changes of the batch are in this order.
  std::vector<std::size_t> changes_;
  // For each entry the number of its change.
  std::vector<std::size_t> changeOf_;
  BatchResult result_;
};

}  // namespace soca::cli
