// The git repositories that a run meets.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "files/targets/GitRepository.h"

namespace soca {

// Where a folder or file stands in version control.
struct GitPlace {
  // The repository of the innermost work tree that it lies in, owned by the `Git` that was asked;
  // null if there is none, or none that can be asked.
  GitRepository* repository = nullptr;
  // Relative to the work folder; empty for that folder itself.
  std::string path;
  // Why the repository can't be asked, in words.
  std::string problem;
};

// Opens each repository once. May be used by several threads at once.
class Git {
 public:
  // `path` is absolute and without links. Nothing is loaded where no `.git` stands above.
  GitPlace placeOfFolder(const std::string& path);

  // Why git could not bring back what the file holds now, with what to do; nothing if it could, or
  // if the file is in no work tree. Links are followed. Files come folder by folder, so the place
  // of the last folder is kept.
  std::optional<std::string> findUncommitted(const std::string& file);

 private:
  // One of the two is set; neither for what only looks like a repository.
  struct Opened {
    std::unique_ptr<GitRepository> repository;
    std::string problem;
  };

  // Nothing for a file that is not there.
  std::optional<GitPlace> placeOfFile(const std::string& file);
  // The same, of a folder that may stand behind links.
  std::optional<GitPlace> placeBehindLinks(const std::string& folder);
  const Opened& open(const std::string& folder);

  std::mutex mutex_;
  // By the folder in which `.git` stands.
  std::unordered_map<std::string, Opened> opened_;
  std::string lastFolder_;
  std::optional<GitPlace> lastPlace_;
};

}  // namespace soca
