#include "platform/paths/PathDispatcher.h"

#include <algorithm>
#include <utility>

#include "platform/paths/NativePath.h"

using foundation::storage::vfs::AbsoluteIRI;

PathDispatcher& PathDispatcher::getDispatcher() {
  // Never destroyed, because threads may look up classes while the process exits.
  static PathDispatcher& dispatcher = *new PathDispatcher();
  return dispatcher;
}

PathDispatcher::PathDispatcher() { setClassPath({""}); }

void PathDispatcher::setClassPath(const std::vector<std::string>& roots) {
  auto classPath = std::make_unique<ClassPath>();
  for (const std::string& root : roots) {
    const std::string path = fl::filesystem::makeAbsoluteLexically(root);
    classPath->paths.push_back(path);
    classPath->roots.push_back({path, AbsoluteIRI::fromNativePath(path)});
  }
  const std::lock_guard lock(mutex_);
  const auto known = std::find_if(history_.begin(), history_.end(), [&](const auto& earlier) {
    return earlier->paths == classPath->paths;
  });
  if (known != history_.end()) {
    current_.store(known->get());
    return;
  }
  history_.push_back(std::move(classPath));
  current_.store(history_.back().get());
}
