// The git repositories of a run.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "files/targets/GitRepository.h"

namespace soca {

// The place of a folder or file in version control.
struct GitPlace {
  // The repository of the innermost work tree that contains it, owned by the `Git` object; null if
  // there is none, or if it cannot be read.
  GitRepository* repository = nullptr;
  // Relative to the work folder; empty for that folder itself.
  std::string path;
  // The reason why the repository cannot be read.
  std::string problem;
};

// Opens each repository once. Safe to use from several threads.
class Git {
 public:
  // `path` is absolute and without links. The library is only loaded if there is a `.git` above it.
  GitPlace placeOfFolder(const std::string& path);

  // The reason why git could not restore the current contents of the file, with advice; empty if it
  // could, or if the file is in no work tree. Links are followed. The place of the last folder is
  // cached, because files are queried folder by folder.
  std::optional<std::string> findUncommitted(const std::string& file);

 private:
  // One of the two is set.
  struct Opened {
    std::unique_ptr<GitRepository> repository;
    std::string problem;
  };

  // Empty if the file does not exist.
  std::optional<GitPlace> placeOfFile(const std::string& file);
  // The same for a folder whose path may have links.
  std::optional<GitPlace> placeBehindLinks(const std::string& folder);
  const Opened& open(const std::string& folder);

  std::mutex mutex_;
  // By the folder that has the `.git`.
  std::unordered_map<std::string, Opened> opened_;
  std::string lastFolder_;
  std::optional<GitPlace> lastPlace_;
};

}  // namespace soca
