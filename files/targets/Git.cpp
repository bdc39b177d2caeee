#include "files/targets/Git.h"

#include <fmt/core.h>
#include <sys/stat.h>

#include <algorithm>

#include "files/targets/ClassRoots.h"

namespace soca {
namespace {

bool hasRepository(const std::string& folder) {
  struct stat status = {};
  return ::lstat((folder == "/" ? "/.git" : folder + "/.git").c_str(), &status) == 0;
}

std::string folderAbove(const std::string& path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

}  // namespace

GitPlace Git::placeOfFolder(const std::string& path) {
  std::string folder = path;
  while (true) {
    if (hasRepository(folder)) {
      const Opened& opened = open(folder);
      if (!opened.problem.empty()) return {.path = {}, .problem = opened.problem};
      const std::string& workFolder = opened.repository->workFolder();
      if (const auto relative = relativeTo(workFolder, path)) {
        return {
            .repository = opened.repository.get(), .path = std::string(*relative), .problem = {}};
      }
      return {.path = {},
              .problem = fmt::format("'{}/.git' has its work tree in '{}'; mend core.worktree",
                                     folder, workFolder)};
    }
    if (folder == "/") return {};
    folder = folderAbove(folder);
  }
}

std::optional<GitPlace> Git::placeOfFile(const std::string& file) {
  struct stat status = {};
  if (::lstat(file.c_str(), &status) != 0) return std::nullopt;
  if (S_ISLNK(status.st_mode)) {
    const auto path = resolveLinks(file);
    return path ? placeOfFile(*path) : std::nullopt;
  }
  auto place = placeBehindLinks(folderAbove(file));
  if (!place || place->repository == nullptr) return place;
  if (!place->path.empty()) place->path += '/';
  place->path += file.substr(file.rfind('/') + 1);
  return place;
}

std::optional<GitPlace> Git::placeBehindLinks(const std::string& folder) {
  {
    const std::lock_guard lock(mutex_);
    if (lastFolder_ == folder) return lastPlace_;
  }
  const auto path = resolveLinks(folder);
  const auto place = path ? std::optional(placeOfFolder(*path)) : std::nullopt;
  const std::lock_guard lock(mutex_);
  lastFolder_ = folder;
  lastPlace_ = place;
  return place;
}

const Git::Opened& Git::open(const std::string& folder) {
  const std::lock_guard lock(mutex_);
  const auto [entry, isNew] = opened_.try_emplace(folder);
  if (isNew) {
    try {
      entry->second.repository = GitRepository::open(folder);
    } catch (const GitError& error) {
      entry->second.problem = error.what();
    }
  }
  return entry->second;
}

std::optional<std::string> Git::findUncommitted(const std::string& file) {
  const auto place = placeOfFile(file);
  if (!place) return std::nullopt;
  std::string problem = place->problem;
  if (place->repository != nullptr) {
    try {
      switch (place->repository->stateOf(place->path)) {
        case GitStateType::committed:
          return std::nullopt;
        case GitStateType::changed:
          return "it has changes that are not committed to git; commit or stash them, or give "
                 "--allow-dirty";
        case GitStateType::untracked:
          return "it is not in git, which could not bring it back; add and commit it, or give "
                 "--allow-dirty";
      }
    } catch (const GitError& error) {
      problem = error.what();
    }
  }
  if (problem.empty()) return std::nullopt;
  return fmt::format("whether it is committed to git can't be told: {}, or give --allow-dirty",
                     problem);
}

}  // namespace soca
