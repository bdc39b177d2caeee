// The roots that a class path should have, guessed from superclasses that it does not lead to.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "files/targets/ClassRoots.h"
#include "files/targets/FolderListing.h"

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
  // If the roots in use are wrong: the roots that the class path should have.
  std::vector<std::string> roots;
  // The number of these superclasses.
  std::size_t found = 0;
  // Whether the roots in use are wrong for the run, and not only for some classes in it: such a
  // superclass is under a folder that was named, or one between it and its root; or the run is
  // about a whole root, no superclass at all was found on the class path, and such a one is under a
  // folder above the root.
  bool isWrong = false;
};

// Looks for the superclasses that a run does not find under each named folder, the folders between
// it and its root, those between it and the files, and those above the roots. Of these folders the
// number is bounded, but not that of the superclasses: each is looked up in what was read of the
// folders. Keeps only those that it finds.
class RootSearch {
 public:
  // Both pointers must outlive the search; the folders must be complete before its first call.
  RootSearch(const ClassRoots* roots, const std::vector<NamedFolder>* named)
      : roots_(roots), named_(named) {}

  // Takes a superclass that was not found, and the folder of the file that names it.
  void addMissing(const std::string& superClass, const std::string& folder);
  // Takes a superclass that was found on the class path.
  void addFound(const std::string& superClass);

  // Empty if none of the missing ones is under any of the folders.
  std::optional<SuggestedRoots> find();

 private:
  // The numbers of folders in the order in which they are preferred.
  using Numbers = std::vector<std::size_t>;
  enum class FolderType { named, above, inside };

  void addNamedFolders();
  void addFoldersAbove(std::string folder);
  // The number of the folder.
  std::size_t add(const std::string& path, FolderType type);
  // The named ones that hold the class.
  Numbers namedHoldersOf(const std::string& superClass);
  // The other folders that may hold what a file in the folder names.
  const Numbers& othersFor(const std::string& folder);

  bool isOneFound(FolderType type) const;
  // Whether the run is about nothing less than a root.
  bool areRootsNamed() const;
  // Takes the folder with the most superclasses, then the one with the most of the others, and so
  // on, in all or of one type. Counts the superclasses.
  Numbers choose(std::optional<FolderType> type, std::size_t& found) const;
  std::vector<std::string> pathsOf(const Numbers& numbers) const;
  // The class path with the chosen folders that still leads to what is found and named.
  std::vector<std::string> makeRoots(Numbers chosen);
  bool needsPresentRoot(const Numbers& chosen);
  bool isUnder(const Numbers& chosen, const std::string& folder) const;

  const ClassRoots* roots_;
  const std::vector<NamedFolder>* named_;

  FolderListing listing_;
  std::vector<std::string> paths_;
  std::vector<FolderType> types_;
  std::unordered_map<std::string, std::size_t> numbers_;
  // For the first part of a class name the named folders that have an entry of that name.
  std::unordered_map<std::string_view, Numbers> namedByEntry_;
  std::size_t lookups_ = 0;
  // The last folder of a file, and the folders for it.
  std::string lastFolder_;
  Numbers lastOthers_;

  // For each set of folders the number of superclasses that are under all of these; and the hashes
  // of those names.
  std::map<Numbers, std::size_t> counts_;
  std::unordered_set<std::size_t> counted_;
  // For packages on the class path a superclass that was found there.
  std::map<std::string, std::string, std::less<>> found_;
};

}  // namespace soca
