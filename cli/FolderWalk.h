// The class files below a folder of the class path, one after the other.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/ClassRoots.h"

namespace soca::cli {

struct FoundFile {
  enum class Type {
    // `.vlm` or `.p`, in a place and with a name that make it the file of a class. Whether it holds
    // one was not looked at.
    classFile,
    // A `.vlm` or `.p` that the class path has no name for, or that is no regular file.
    noClass,
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

// Reads each folder when it comes to it, and keeps no more than the names of those that it is in.
// Classes come in the byte order of their names. Links to folders are not followed, and folders
// whose names no class name can have are left out, unless a root lies in them.
class FolderWalk {
 public:
  // `roots` must outlive the walk. `folder` is absolute.
  FolderWalk(const ClassRoots* roots, std::string folder);

  std::optional<FoundFile> next();

 private:
  struct Entry {
    // Without the extension of a class file.
    std::string name;
    bool isFolder = false;
    bool isRegular = true;
    // Of a class file, whether it is the `.vlm`.
    bool hasSource = false;
  };

  // A folder under way; its entries stand in reverse order.
  struct Level {
    std::string folder;
    std::optional<ClassRoots::Package> package;
    std::vector<Entry> entries;
  };

  void enter(std::string folder);
  std::vector<Entry> readEntries(const Level& level);
  void addEntry(const Level& level, const std::string& name, unsigned char type,
                std::vector<Entry>& entries) const;
  bool isWorthEntering(const Level& level, const std::string& name) const;
  static FoundFile describe(const Level& level, const Entry& entry);

  const ClassRoots* roots_;
  std::vector<Level> levels_;
  // A folder that could not be read, to be told of next.
  std::optional<FoundFile> unreadable_;
};

}  // namespace soca::cli
