// The files of a git repository, checked before the library opens them: it would wait for the other
// end of a pipe for ever, and need years for some patterns.
#pragma once

#include <stdexcept>
#include <string>

namespace soca {

// A repository that cannot be read; `what` is the reason and the remedy.
class GitError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What is needed to open the repository whose `.git` is in the folder, and to read its index and
// its configuration. Throws GitError if that `.git` is no repository, or has something else than
// files and folders where git keeps its own. Files that do not exist are no fault.
void checkRepositoryFiles(const std::string& folder);

// The same for its commits and objects, with those that it shares with other repositories.
void checkObjectFiles(const std::string& folder);

// A file with ignore rules or attributes. Throws GitError if it is no file, or if a pattern has so
// many stars that matching it may take too long.
void checkRules(const std::string& path);

}  // namespace soca
