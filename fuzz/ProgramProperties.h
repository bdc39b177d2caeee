// The properties of the program on a folder of classes.
#pragma once

#include <cstdint>

namespace soca::fuzz {

// Makes the classes of the seeds in one folder and runs the program there. Throws a Violation
// unless all of this holds:
// - the output is the same for any number of jobs;
// - each class has the same outcome in any order of the arguments;
// - a dry run writes no file;
// - `--write` writes to each file the text that the dry run printed, or, if the class failed or was
//   refused, leaves the old one; and none of the new texts has syntax errors.
void checkProgram(std::uint64_t firstSeed, std::uint64_t count);

}  // namespace soca::fuzz
