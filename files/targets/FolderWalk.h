// The class files below a folder of the class path, one after the other.
#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "files/targets/ClassRoots.h"
#include "files/targets/Git.h"

namespace soca {

struct FoundFile {
  enum class Type {
    // `.vlm` or `.p`, in a place and with a name that make it the file of a class. Whether it holds
    // one was not looked at.
    classFile,
    // A `.vlm` or `.p` that the class path has no name for, or that is no regular file.
    noClass,
    // A `.vlm` or `.p` in a place where there are classes, whose path is no text.
    misnamed,
    // A folder; `reason` says why it could not be read.
    unreadable,
  };

  Type type = Type::classFile;
  // The source file, if it is there beside a p-file.
  std::string path;
  std::string className;
  // The number of the root by which the class has its name.
  std::size_t root = 0;
  std::string reason;
};

// What a walk leaves out: what git ignores, hidden folders, and links to folders; or nothing of it.
enum class WalkType { filtered, everything };

// Reads each folder when it comes to it, and keeps no more than the names of those that it is in.
// Classes come in the byte order of their names. Folders whose names no class name can have are
// left out, unless a root lies in them.
//
// The folder itself and the roots in it are walked whatever git says of them. Where git ignores
// such a folder, its rules say nothing of what lies below, and all of that is walked.
//
// A walk of everything follows a link to a folder that lies outside of the walk, each such folder
// once. What lies inside is come to anyway.
class FolderWalk {
 public:
  // `roots` and `git` must outlive the walk. `folder` is absolute.
  FolderWalk(const ClassRoots* roots, Git* git, WalkType type, std::string folder);

  std::optional<FoundFile> next();

  // The folder that is walked, without links.
  const std::string& folder() const { return start_; }

  // Why git's rules could not be asked, once for each repository, as far as the walk has come.
  const std::vector<std::string>& warnings() const { return warnings_; }

 private:
  struct Entry {
    // Without the extension of a class file.
    std::string name;
    bool isFolder = false;
    // Whether the folder is behind a link.
    bool isLink = false;
    bool isRegular = true;
    // Of a class file, whether it is the `.vlm`.
    bool hasSource = false;
  };

  // A folder under way; its entries stand in reverse order.
  struct Level {
    std::string folder;
    std::optional<ClassRoots::Package> package;
    // Whether it has no package only because its path is no UTF-8.
    bool isMisnamed = false;
    std::vector<Entry> entries;
    // Whose rules hold in the folder, and its place there.
    GitPlace git;
  };

  // Enters a folder that is walked whatever git says of it.
  void enterAnyway(std::string folder);
  void enterFolderIn(const Level& level, const Entry& entry);
  void enter(std::string folder, GitPlace git);
  GitPlace askGit(const std::string& folder);
  static bool isIgnored(const Level& level, const Entry& entry);
  // Whether the link leads to a folder that the walk would not come to without it.
  bool isNewFolder(const std::string& link);
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
  // The folders, without links, that links led to.
  std::unordered_set<std::string> linked_;
  std::vector<std::string> warnings_;
  // A folder that could not be read, to be told of next.
  std::optional<FoundFile> unreadable_;
};

}  // namespace soca
