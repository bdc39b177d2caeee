// The class path: the folders that are searched for class files.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/paths/Iri.h"

// The one class path of the process. Reading it takes no lock and may happen while another thread
// sets it; a lookup uses either the old roots or the new ones.
class PathDispatcher {
 public:
  // One root folder in its two forms.
  struct Root {
    // Absolute, in UTF-8, with no slash at the end unless it is "/".
    std::string path;
    foundation::storage::vfs::AbsoluteIRI iri;
  };

  static PathDispatcher& getDispatcher();

  PathDispatcher(const PathDispatcher&) = delete;
  PathDispatcher& operator=(const PathDispatcher&) = delete;

  // Sets the roots, in the order in which they are searched: native paths in UTF-8, which need not
  // exist. They are made absolute without following links.
  void setClassPath(const std::vector<std::string>& roots);

  // The roots as absolute paths. Until a client sets them, the only root is the folder that was
  // current when the dispatcher was first used. The result stays valid and never changes.
  const std::vector<std::string>& classPath() const { return current_.load()->paths; }

  // The same roots in both forms.
  const std::vector<Root>& roots() const { return current_.load()->roots; }

 private:
  struct ClassPath {
    std::vector<std::string> paths;
    std::vector<Root> roots;
  };

  PathDispatcher();

  std::mutex mutex_;
  // Every class path that was ever set; kept because readers hold plain references.
  std::vector<std::unique_ptr<const ClassPath>> history_;
  std::atomic<const ClassPath*> current_ = nullptr;
};
