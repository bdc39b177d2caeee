// What the arguments of a command stand for: classes, one after the other, each once.
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

namespace soca {

struct Target {
  enum class Type {
    aClass,
    // A class file that the class path does not lead to: it has the file `hiddenBy` for that name.
    hidden,
    // A file that holds no class by its name or place.
    noClass,
    // A class file whose path is no UTF-8.
    misnamed,
    // A folder that could not be read.
    unreadable,
  };

  Type type = Type::aClass;
  // Dotted, in UTF-8; without a class the path, as far as it can be shown.
  std::string className;
  // Whether an argument names the class or the file, rather than a folder that it lies in.
  bool isNamed = false;
  // The file or folder that was found or named; empty for a class name.
  std::string path;
  std::string hiddenBy;
  // Why a folder can't be read.
  std::string reason;
};

// Arguments are class names, class files and folders. An existing file or folder, and anything with
// a slash, is a path. No argument stands for all roots.
class Targets {
 public:
  // Takes no folders. Throws UsageError for an argument that is on no root, or is a folder. `roots`
  // must outlive the targets.
  Targets(const ClassRoots* roots, const std::vector<std::string>& arguments);

  // Takes folders too, which are walked as `walk` says. `git` must outlive the targets.
  Targets(const ClassRoots* roots, const std::vector<std::string>& arguments, WalkType walk,
          Git* git);

  // Whether there is one target at most, as far as that can be known before it is asked for.
  bool isOneClass() const;

  // Whether some of them are looked for in folders.
  bool haveFolders() const;

  // In the order of the arguments.
  std::optional<Target> next();

  // What went wrong without keeping anything from going on, each once.
  std::vector<std::string> warnings() const;

 private:
  using Argument = std::variant<Target, FolderWalk>;

  void addArguments(const std::vector<std::string>& arguments);
  Argument makeArgument(const std::string& argument) const;
  Target makeFileTarget(const std::string& argument, const std::string& path,
                        std::string_view stem) const;
  std::optional<Target> nextOf(Argument& argument);
  Target makeTarget(FoundFile file) const;
  bool haveNestedFolders() const;
  // Whether the target was not given out yet.
  bool isNew(const Target& target);

  const ClassRoots* roots_;
  WalkType walk_ = WalkType::filtered;
  // Null where folders are refused.
  Git* git_ = nullptr;
  std::vector<Argument> arguments_;
  std::size_t current_ = 0;
  // The classes, and the files that are hidden, that arguments name.
  std::unordered_set<std::string> named_;
  // Whether a folder is walked that lies in another one. Otherwise only what an argument names can
  // come up twice, and little has to be kept.
  bool mayRepeat_ = false;
  std::unordered_set<std::string> seen_;
};

}  // namespace soca
