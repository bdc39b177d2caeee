// The contents of a file with the name of a class file.
#pragma once

#include <string>

namespace soca {

// The contents of a file that should have a class.
struct FileVerdict {
  enum class Type { holdsClass, isEmpty, holdsNoClass, isUnreadable };
  Type type = Type::holdsClass;
  // A description, except for a class.
  std::string text;
};

FileVerdict judgeFile(const std::string& path);

}  // namespace soca
