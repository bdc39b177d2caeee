#include "files/writing/Flush.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <unordered_set>

#include "files/writing/Descriptor.h"

namespace soca {
namespace {

constexpr std::size_t fewPaths = 8;

Descriptor openPath(const std::string& path) {
  return Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

}  // namespace

bool flushPath(const std::string& path) {
  const Descriptor file = openPath(path);
  return file.isOpen() && ::fsync(file.number()) == 0;
}

bool flushPaths(const std::vector<std::string>& paths) {
  std::unordered_set<dev_t> flushed;
  for (const std::string& path : paths) {
    if (paths.size() <= fewPaths) {
      if (!flushPath(path)) return false;
      continue;
    }
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) return false;
    if (!flushed.insert(status.st_dev).second) continue;
    const Descriptor file = openPath(path);
    if (!file.isOpen() || ::syncfs(file.number()) != 0) return false;
  }
  return true;
}

}  // namespace soca
