// What the program knows besides a message: what could not be found, and where it looked.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "files/targets/ClassRoots.h"
#include "reports/outcomes/FileVerdict.h"

namespace soca {

// Why a class counts as no System object.
struct OtherClassHints {
  std::vector<std::string> hints;
  // What its file turned out to be, if it has one.
  FileVerdict::Type file = FileVerdict::Type::holdsClass;
};

OtherClassHints hintsOnOtherClass(std::string_view className, const ClassRoots& roots);

// Which classes that the class derives from could not be found.
std::vector<std::string> hintsOnMissingSuperClasses(std::string_view className,
                                                    const ClassRoots& roots);

// What is there in place of the source of a class found as a p-file; `sourcePath` is the path that
// it should have.
std::vector<std::string> hintsOnPFile(const std::string& sourcePath);

}  // namespace soca
