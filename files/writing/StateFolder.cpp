#include "files/writing/StateFolder.h"

#include <fmt/core.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "files/writing/Flush.h"
#include "files/writing/RecordFile.h"

namespace soca {
namespace {

constexpr std::string_view advice =
    "set XDG_STATE_HOME to the absolute path of a folder that you may write to";

std::optional<std::string> absolutePathIn(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || *value != '/') return std::nullopt;
  return value;
}

}  // namespace

std::string stateFolder() {
  if (const auto state = absolutePathIn("XDG_STATE_HOME")) return *state + "/soca";
  if (const auto home = absolutePathIn("HOME")) return *home + "/.local/state/soca";
  throw JournalError(
      fmt::format("there is no place for the journal of what is written, since neither "
                  "XDG_STATE_HOME nor HOME is an absolute path; {}",
                  advice));
}

void makeFolders(const std::string& path) {
  for (std::size_t slash = path.find('/', 1); true; slash = path.find('/', slash + 1)) {
    const std::string folder = path.substr(0, slash);
    struct stat status = {};
    const bool isThere = ::stat(folder.c_str(), &status) == 0;
    if (!isThere && ::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
      throw JournalError(fmt::format("the folder '{}' for the journal can't be made: {}; {}",
                                     folder, std::strerror(errno), advice));
    }
    // If a folder cannot be flushed, the system writes its entry later.
    if (!isThere) flushPath(path.substr(0, std::max<std::size_t>(path.rfind('/', slash - 1), 1)));
    if (slash == std::string::npos) return;
  }
}

}  // namespace soca
