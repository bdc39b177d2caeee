// The files of a git repository, checked before the library opens them: it would wait for the other
// end of a pipe for ever, and need years for some patterns.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace soca {

// A repository that cannot be read; `what` is the reason and the remedy.
class GitError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The pattern among some rules that may take the longest to match.
struct SlowestPattern {
  // In one name; runs of stars count as one.
  std::size_t stars = 0;
  // "line 3 of 'path'"
  std::string place;
};

// What is needed to open the repository whose `.git` is in the folder, and to read its index and
// its configuration. Throws GitError if that `.git` is no repository, or has something else than
// files and folders where git keeps its own. Files that do not exist are no fault.
SlowestPattern checkRepositoryFiles(const std::string& folder);

// The same for its commits and objects, with those that it shares with other repositories.
void checkObjectFiles(const std::string& folder);

// A file with ignore rules or attributes. Throws GitError if it is no file, or if a pattern has so
// many `**` that matching it may take too long.
SlowestPattern checkRules(const std::string& path);

// The time of matching a name grows with the number of ways to choose where the stars end. Throws
// GitError if that is too long for the path, which is relative to the work folder.
void checkMatching(const SlowestPattern& pattern, const std::string& path);

}  // namespace soca
