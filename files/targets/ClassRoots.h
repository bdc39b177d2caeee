// Between paths and class names: which class a file holds, given the roots of the class path.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace soca {

// The roots of the class path as absolute native paths in UTF-8, in the order in which they are
// asked. Paths are compared as they stand; links are looked through only where it says so.
class ClassRoots {
 public:
  explicit ClassRoots(std::vector<std::string> roots) : roots_(std::move(roots)) {}

  // What the names of the classes in `folder` begin with, `a.b.`, by the first root under which the
  // folder's name is one of packages; nothing if there is no such root.
  struct Package {
    std::size_t root = 0;
    std::string prefix;
  };
  std::optional<Package> packageOf(std::string_view folder) const;

  // Whether some root is the folder or lies below it.
  bool hasRootAtOrBelow(std::string_view folder) const;

  // The file, if there is one, that the class path has for the class in front of the root number
  // `root`: no file under that root is then the class's.
  std::optional<std::string> fileInFrontOf(std::size_t root, std::string_view className) const;

  // The same place as a path under a root, where only links keep it from being one as it stands;
  // otherwise the path itself.
  std::string underRoot(const std::string& path) const;

  // For messages: the roots, each in quotes.
  std::string listing() const;

  const std::vector<std::string>& all() const { return roots_; }

 private:
  std::vector<std::string> roots_;
};

// What is left of `path` behind `folder` and a slash, empty for the folder itself; nothing if the
// path is not in the folder.
std::optional<std::string_view> relativeTo(std::string_view folder, std::string_view path);

// The path without links; nothing if it leads nowhere.
std::optional<std::string> resolveLinks(const std::string& path);

// Whether the bytes are an identifier in UTF-8.
bool isIdentifierName(std::string_view name);

// The name without `.vlm` or `.p` at its end; nothing if it ends in neither.
std::optional<std::string_view> stemOfClassFile(std::string_view fileName);

// `a/b/C` for `a.b.C`.
std::string relativePathOfClass(std::string_view className);

}  // namespace soca
