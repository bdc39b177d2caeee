#include "tests/Places.h"

namespace soca::testing {

std::string projectPath(std::string_view relative) {
  return std::string(SOCA_SOURCE_DIR "/").append(relative);
}

std::string programPath() { return SOCA_PROGRAM; }

}  // namespace soca::testing
