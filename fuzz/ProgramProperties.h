// What holds of the program on a folder of classes.
#pragma once

#include <cstdint>

namespace soca::fuzz {

// Makes the classes of the seeds in one folder and runs the program there. Throws a Violation
// unless all of this holds:
// - what it prints is the same for any number of jobs;
// - each class has the same outcome in any order of the arguments;
// - a dry run writes nothing;
// - `--write` leaves in each file the text that was told of, or, where the class failed or was
//   refused, the old one; and none of the new texts has syntax errors.
void checkProgram(std::uint64_t firstSeed, std::uint64_t count);

}  // namespace soca::fuzz
