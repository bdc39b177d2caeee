// What a file holds that has the name of a class file.
#pragma once

#include <string>

namespace soca {

// What a file turns out to be that should hold a class.
struct FileVerdict {
  enum class Type { holdsClass, isEmpty, holdsNoClass, isUnreadable };
  Type type = Type::holdsClass;
  // In words, for all but a class.
  std::string text;
};

FileVerdict judgeFile(const std::string& path);

}  // namespace soca
