// The contents of a file with the name of a class file.
#pragma once

#include <string>

namespace soca {

// Whose words describe a failure: those of the service, with which hosts compare the output, or
// those of the program.
enum class WordsType { service, program };

// The contents of a file that should have a class.
struct FileVerdict {
  enum class Type { holdsClass, isEmpty, holdsNoClass, isUtf16, isUnreadable };
  Type type = Type::holdsClass;
  // A description, except for a class.
  std::string text;
};

// To the service, a file in UTF-16 is one without a class.
FileVerdict judgeFile(const std::string& path, WordsType words);

}  // namespace soca
