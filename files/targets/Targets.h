// The classes that the arguments of a command select, in order and each once.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <variant>
#include <vector>

#include "files/targets/ClassRoots.h"
#include "files/targets/FolderWalk.h"
#include "files/targets/RootSearch.h"

namespace soca {

struct Target {
  enum class Type {
    aClass,
    // A class file that is hidden by another file of that class on the class path, `hiddenBy`.
    hidden,
    // A file without a class, by its place.
    noClass,
    // A file that a walk finds and whose name is no class name.
    otherName,
    // An argument that is no class file by its name, or a file on no root; `reason` is which.
    passedOver,
    // A class file whose path is not UTF-8.
    misnamed,
    // A folder that could not be read.
    unreadable,
    // A class file that may be hidden by the file `path`, which could not be read.
    undecided,
  };

  Type type = Type::aClass;
  // Dotted, in UTF-8; without a class the path, as far as it can be shown.
  std::string className;
  // Whether an argument names the class or the file, and not a folder that contains it.
  bool isNamed = false;
  // The file or folder that was found or named; empty for a class name.
  std::string path;
  std::string hiddenBy;
  // The reason why a folder or file cannot be read, or a file is passed over.
  std::string reason;
  // Whether the run passes over the file if it holds no class.
  bool mayHoldNoClass = false;
};

// How arguments are taken that are files, but no class files or on no root.
enum class OtherFilesType { areErrors, arePassedOver };

// Arguments are class names, class files and folders. An existing file or folder, and anything with
// a slash, is a path. Without arguments all roots are selected.
class Targets {
 public:
  // Accepts no folders. Throws UsageError for an argument that is on no root, or is a folder.
  // `roots` must outlive the targets.
  Targets(const ClassRoots* roots, const std::vector<std::string>& arguments);

  // Accepts folders too; `walk` selects the type of their walk. `git` must outlive the targets.
  Targets(const ClassRoots* roots, const std::vector<std::string>& arguments, WalkType walk,
          Git* git, OtherFilesType otherFiles);

  // Whether there is one target at most, as far as the arguments show.
  bool isOneClass() const;

  // Whether any of them is searched in folders.
  bool haveFolders() const;

  // In the order of the arguments.
  std::optional<Target> next();

  // The folders that arguments name, or that hold the files that they name; without arguments the
  // roots.
  const std::vector<NamedFolder>& namedFolders() const { return namedFolders_; }

  // Problems that do not stop the run, each once.
  std::vector<std::string> warnings() const;

 private:
  using Argument = std::variant<Target, FolderWalk>;

  void addArguments(const std::vector<std::string>& arguments);
  Argument makeArgument(const std::string& argument);
  Target makeFileTarget(const std::string& argument, const std::string& path,
                        std::string_view stem);
  // Throws a UsageError with the text of `error` if such files are errors.
  Target passOver(const std::string& path, std::string reason, const std::string& error) const;
  void addNamedFolder(std::string folder, bool isOfFile);
  std::optional<Target> nextOf(Argument& argument);
  Target makeTarget(FoundFile file) const;
  bool haveNestedFolders() const;
  // Whether the target was not returned before.
  bool isNew(const Target& target);

  const ClassRoots* roots_;
  WalkType walk_ = WalkType::filtered;
  // Null if folders are not accepted.
  Git* git_ = nullptr;
  OtherFilesType otherFiles_ = OtherFilesType::areErrors;
  std::vector<Argument> arguments_;
  // Each once, but for files of two folders in turns.
  std::vector<NamedFolder> namedFolders_;
  std::size_t current_ = 0;
  // The classes, and the hidden files, that arguments name.
  std::unordered_set<std::string> named_;
  // Whether a folder of the walks is inside another one. Otherwise only a target that an argument
  // names can occur twice, and few have to be recorded.
  bool mayRepeat_ = false;
  std::unordered_set<std::string> seen_;
};

}  // namespace soca
