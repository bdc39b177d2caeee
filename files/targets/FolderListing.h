// What folders hold.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

namespace soca {

// The names in folders. A folder is read when it is first asked for, and only once, so that a
// million questions cost no more than the folders that they are about. Paths are absolute.
class FolderListing {
 public:
  // Empty for a folder that cannot be read. References stay valid.
  struct Names {
    // Of class files, without the extension.
    std::set<std::string, std::less<>> classes;
    std::set<std::string, std::less<>> folders;
  };
  const Names& namesIn(const std::string& folder);

  // Whether the class has a file if the folder is a root.
  bool holdsClass(const std::string& root, std::string_view className);

 private:
  std::unordered_map<std::string, Names> known_;
};

}  // namespace soca
