// The properties of the program on a folder of classes.
#pragma once

#include <cstdint>

namespace soca::fuzz {

// Makes the classes of the seeds in one folder, many of which derive from each other, and runs the
// program there. Throws a Violation unless all of this holds:
// - the output is the same for any number of jobs;
// - each class has the same outcome in any order of the arguments;
// - a dry run writes no file;
// - `--write` writes to each file the text that the dry run printed, or, if the class failed,
//   leaves the old one; and none of the new texts has syntax errors;
// - a second `--write` changes no file;
// - the exit code is 2 with failed classes, otherwise 1 if `--check` finds a change, otherwise 0.
void checkProgram(std::uint64_t firstSeed, std::uint64_t count);

}  // namespace soca::fuzz
