// Conversions between paths and class names, by the roots of the class path.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace soca {

// The roots of the class path as absolute native paths in UTF-8, in the order in which they are
// searched. Paths are compared as strings; links are resolved only where a comment states it.
class ClassRoots {
 public:
  explicit ClassRoots(std::vector<std::string> roots) : roots_(std::move(roots)) {}

  // The package of a folder, `a.b.`, by the first root below which all segments of the folder are
  // identifiers; empty if there is no such root.
  struct Package {
    std::size_t root = 0;
    std::string prefix;
  };
  std::optional<Package> packageOf(std::string_view folder) const;

  // Whether any root is the folder or is below it.
  bool hasRootAtOrBelow(std::string_view folder) const;

  // The file of the class under a root before the root number `root`, if there is one: it hides the
  // class's file under that root.
  // Throws fl::filesystem::ReadError if that cannot be determined.
  std::optional<std::string> fileInFrontOf(std::size_t root, std::string_view className) const;

  // The path below a root that leads to the same place, if `path` is below a root only by links;
  // otherwise the path itself.
  std::string underRoot(const std::string& path) const;

  // The roots for messages, each in quotes.
  std::string listing() const;

  const std::vector<std::string>& all() const { return roots_; }

 private:
  std::vector<std::string> roots_;
};

// The part of `path` after `folder` and a slash, empty for the folder itself; no value if the path
// is not in the folder.
std::optional<std::string_view> relativeTo(std::string_view folder, std::string_view path);

// The path without links; empty if it does not exist.
std::optional<std::string> resolveLinks(const std::string& path);

// Whether the bytes are an identifier in UTF-8.
bool isIdentifierName(std::string_view name);

// The name without its final `.vlm` or `.p`; empty if it has neither.
std::optional<std::string_view> stemOfClassFile(std::string_view fileName);

// `a/b/C` for `a.b.C`.
std::string relativePathOfClass(std::string_view className);

}  // namespace soca
