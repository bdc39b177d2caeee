// The class files below a folder of the class path, in order.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "files/targets/ClassRoots.h"
#include "files/targets/Git.h"

namespace soca {

struct FoundFile {
  enum class Type {
    // `.vlm` or `.p`, with a place and a name of a class file. The contents are not checked.
    classFile,
    // A `.vlm` or `.p` in a folder that is no package, or that is no regular file.
    noClass,
    // A file in a package whose name is no class name: `H H.vlm`, or `K.VLM`.
    otherName,
    // A `.vlm` or `.p` in the place of a class, whose path is not UTF-8.
    misnamed,
    // A folder, or what may be one; `reason` is why it could not be read.
    unreadable,
  };

  Type type = Type::classFile;
  // The source file, even if there is also a p-file.
  std::string path;
  std::string className;
  // The number of the root that gives the class its name.
  std::size_t root = 0;
  std::string reason;
};

// What a walk omits: what git ignores and links to folders; or nothing of these.
enum class WalkType { filtered, everything };

// Reads each folder when the walk reaches it, and keeps only the entries of the folders on its
// path. Classes come in the byte order of their names. A folder that cannot be a package is
// omitted, unless there is a root below it.
//
// The folder itself and the roots in it are walked even if git ignores them. Git's rules do not
// apply below such an ignored folder, so everything in it is walked.
//
// A walk of everything follows links to folders outside of the walk, each folder once. Folders
// inside are reached without links.
class FolderWalk {
 public:
  // `roots` and `git` must outlive the walk. `folder` is absolute.
  FolderWalk(const ClassRoots* roots, Git* git, WalkType type, std::string folder);

  std::optional<FoundFile> next();

  // The folder of the walk, without links.
  const std::string& folder() const { return start_; }

  // The reasons why git's rules could not be read, each once.
  const std::vector<std::string>& warnings() const { return warnings_; }

 private:
  struct Entry {
    // Without the extension of a class file.
    std::string name;
    bool isFolder = false;
    // Whether the folder is a link.
    bool isLink = false;
    bool isRegular = true;
    // For a class file, whether it is the `.vlm`.
    bool hasSource = false;
    // Whether the extension has capitals; then it is in the name.
    bool hasCapitals = false;
  };

  // A folder of the current path; its entries are in reverse order.
  struct Level {
    std::string folder;
    std::optional<ClassRoots::Package> package;
    // Whether it has no package only because its path is not UTF-8.
    bool isMisnamed = false;
    std::vector<Entry> entries;
    // The repository whose rules apply in the folder, and the folder's place in it.
    GitPlace git;
  };

  // Enters a folder that is walked even if git ignores it.
  void enterAnyway(std::string folder);
  void enterFolderIn(const Level& level, const Entry& entry);
  void enter(std::string folder, GitPlace git);
  GitPlace askGit(const std::string& folder);
  void addWarning(const std::string& problem);
  bool isIgnored(const Level& level, const Entry& entry);
  bool isIgnoredIn(const GitPlace& git, const std::string& path, bool isFolder);
  // Whether the link leads to a folder that the walk would not reach otherwise; remembers it if
  // that cannot be determined.
  bool isNewFolder(const std::string& link);
  // Remembers the folder, with the reason by the error number.
  void addUnreadable(std::string path, int error);
  std::vector<Entry> readEntries(const Level& level);
  void addEntry(const Level& level, const std::string& name, unsigned char type,
                std::vector<Entry>& entries);
  bool isWorthEntering(const Level& level, const std::string& name) const;
  static std::string fileName(const Entry& entry);
  static FoundFile describe(const Level& level, const Entry& entry);

  const ClassRoots* roots_;
  Git* git_;
  WalkType type_;
  std::string start_;
  std::vector<Level> levels_;
  // The folders that links led to, without links.
  std::unordered_set<std::string> linked_;
  std::vector<std::string> warnings_;
  // Folders that could not be read, to be returned next.
  std::deque<FoundFile> unreadable_;
};

}  // namespace soca
