// The exit codes of the program.
#pragma once

namespace soca {

enum class ExitCodeType : int {
  done = 0,
  // Only with `--check`: some class would change, and none failed.
  somethingToChange = 1,
  // A class failed or was refused, or the command line was wrong.
  failed = 2,
  interrupted = 130,
  terminated = 143,
};

}  // namespace soca
