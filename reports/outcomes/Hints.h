// Details for a message: what could not be found, and where it was searched.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "conversions/superclasses/Ancestry.h"
#include "files/targets/ClassRoots.h"
#include "reports/outcomes/FileVerdict.h"

namespace soca {

// The reasons why a class is treated as no System object.
struct OtherClassHints {
  std::vector<std::string> hints;
  // The contents of its file, if it has one.
  FileVerdict::Type file = FileVerdict::Type::holdsClass;
  // The ancestors that were not found, and that the class table does not have.
  std::vector<Ancestry::Missing> missing;
};

OtherClassHints hintsOnOtherClass(std::string_view className, const ClassRoots& roots,
                                  WordsType words);

// Whether all segments of the dotted name are identifiers.
bool isClassName(std::string_view name);

// "there is no class 'a.B'; did you mean 'a.C'?", if there is a class with a name like that.
std::string describeNoClass(std::string_view className, const ClassRoots& roots);

// Hints about the ancestors of the class that could not be found or, in the program's words, were
// read only in part.
std::vector<std::string> hintsOnSuperClasses(std::string_view className, const ClassRoots& roots,
                                             WordsType words);

// Hints about the missing source of a class that is found as a p-file; `sourcePath` is the path
// that it should have.
std::vector<std::string> hintsOnPFile(const std::string& sourcePath);

}  // namespace soca
