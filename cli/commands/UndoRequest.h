// What the arguments of `undo` ask for, and the run that it is about.
#pragma once

#include <optional>
#include <string>

#include "cli/options/Options.h"
#include "files/writing/Journal.h"
#include "files/writing/RunStore.h"

namespace soca::cli {

struct UndoRequest {
  // Throws UsageError.
  explicit UndoRequest(const Options& options);

  // That of the arguments, or the last run that changed a file of the request; empty if there is
  // none. Throws UsageError if the named folder does not exist, and no run knows it.
  std::optional<RunNumber> findRun(const RunStore& store) const;
  // Those of the files that are in the named folder, or are the named file.
  FileNumbers select(const Journal& journal, const FileNumbers& numbers) const;
  // The folder of the files that may be restored.
  const std::string& folderIn(const Journal& journal) const;

  // Why `findRun` has found none.
  std::string whyNoRun(const RunStore& store) const;

  std::optional<RunNumber> run;
  // Absolute and without links, as in journals; empty if the whole run is to be undone.
  std::string limit;

 private:
  void checkLimit(const RunStore& store) const;
  [[noreturn]] void throwMissing() const;

  // Absolute and without links; empty if there is none any more.
  std::string currentFolder_;
  // An argument that does not exist.
  std::string missing_;
};

}  // namespace soca::cli
