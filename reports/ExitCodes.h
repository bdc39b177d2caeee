// How the program ends.
#pragma once

namespace soca {

enum class ExitCodeType : int {
  done = 0,
  // Only with `--check`: some class would change, and none failed.
  somethingToChange = 1,
  // A class failed or was refused, or the command line was wrong.
  failed = 2,
  // The program ends by a signal, for which shells report 128 and its number.
  hungUp = 129,
  interrupted = 130,
  readerGone = 141,
  terminated = 143,
};

constexpr bool isOfSignal(ExitCodeType code) { return static_cast<int>(code) > 128; }

}  // namespace soca
