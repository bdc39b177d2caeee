// The roots that a class path should have, guessed from superclasses that it does not lead to.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "files/targets/ClassRoots.h"

namespace soca {

// A folder that arguments name, or that holds a file that they name. The path is absolute.
struct NamedFolder {
  std::string path;
  bool isOfFile = false;
};

// Folders under which superclasses are that were not found. All paths are absolute.
struct SuggestedRoots {
  // At least one.
  std::vector<std::string> holders;
  // These, and what else the class path needs to have the named folders on it.
  std::vector<std::string> roots;
  // The number of these superclasses.
  std::size_t found = 0;
  // Whether the roots in use are wrong for the run, and not only for some classes in it: such a
  // superclass is under a folder that was named or one above it, or else no superclass at all was
  // found on the class path.
  bool isForAll = false;
};

// Collects the superclasses that a run does not find, and looks for them at its end. The number of
// names, and of files that it asks for, is bounded.
class RootSearch {
 public:
  // Both pointers must outlive the search.
  RootSearch(const ClassRoots* roots, const std::vector<NamedFolder>* named)
      : roots_(roots), named_(named) {}

  // Takes a superclass that was not found, and the folder of the file that names it.
  void addMissing(const std::string& superClass, const std::string& folder);
  // Records that a superclass was found on the class path.
  void addFound() { hasFound_ = true; }

  // Looks for them under each named folder, the folders between it and its root, those between it
  // and the files, and those above the roots. Empty if none is found.
  std::optional<SuggestedRoots> find() const;

 private:
  const ClassRoots* roots_;
  const std::vector<NamedFolder>* named_;
  bool hasFound_ = false;
  // In the order of the calls, each once, with the first folder.
  std::vector<std::pair<std::string, std::string>> missing_;
  std::set<std::string, std::less<>> met_;
};

}  // namespace soca
