#include "cli/update/WriteProgress.h"

#include <new>

namespace soca::cli {

OnStep WriteProgress::onStep() {
  return [this](StepType step, std::size_t count) {
    try {
      advance(step, count, Progress::Clock::now());
    } catch (const std::bad_alloc&) {
      // The files matter more than what is shown of them.
      progress_.reset();
    }
  };
}

void WriteProgress::advance(StepType step, std::size_t count, Progress::Clock::time_point now) {
  if (!progress_ || step_ != step) {
    progress_.emplace(console_, nameOf(step), now);
    progress_->setTotal(count);
    step_ = step;
  }
  progress_->advance(now);
}

std::string_view WriteProgress::nameOf(StepType step) const {
  switch (step) {
    case StepType::saving:
      return "files saved";
    case StepType::staging:
      return "files prepared";
    case StepType::replacing:
      break;
  }
  return replaced_;
}

}  // namespace soca::cli
