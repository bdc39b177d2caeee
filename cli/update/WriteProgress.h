// Shows on a terminal how many files were written or put back.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "cli/terminal/Console.h"
#include "cli/terminal/Progress.h"
#include "files/writing/RunStore.h"

namespace soca::cli {

// The status line of each step shows the files of that step.
class WriteProgress {
 public:
  // `console` must outlive the progress; `replaced`, a literal, is what files are called that were
  // replaced.
  WriteProgress(Console* console, std::string_view replaced)
      : console_(console), replaced_(replaced) {}

  // Refers to this object.
  OnStep onStep();
  void advance(StepType step, std::size_t count, Progress::Clock::time_point now);

 private:
  std::string_view nameOf(StepType step) const;

  Console* console_;
  std::string_view replaced_;
  StepType step_ = StepType::saving;
  // That of the step.
  std::optional<Progress> progress_;
};

}  // namespace soca::cli
