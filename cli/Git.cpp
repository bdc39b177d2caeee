#include "cli/Git.h"

#include <fmt/core.h>
#include <sys/stat.h>

#include <algorithm>

#include "cli/ClassRoots.h"

namespace soca::cli {
namespace {

bool hasRepository(const std::string& folder) {
  struct stat status = {};
  return ::lstat((folder == "/" ? "/.git" : folder + "/.git").c_str(), &status) == 0;
}

std::string folderAbove(const std::string& path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

}  // namespace

GitPlace Git::placeOfFolder(const std::string& path) { return placeOf(path, path); }

GitPlace Git::placeOfFile(const std::string& path) { return placeOf(path, folderAbove(path)); }

GitPlace Git::placeOf(const std::string& path, std::string folder) {
  while (true) {
    if (hasRepository(folder)) {
      const Opened& opened = open(folder);
      if (!opened.problem.empty()) return {.path = {}, .problem = opened.problem};
      if (opened.repository != nullptr) {
        // The repository may say that its work tree is elsewhere.
        const auto relative = relativeTo(opened.repository->workFolder(), path);
        if (!relative) return {};
        return {
            .repository = opened.repository.get(), .path = std::string(*relative), .problem = {}};
      }
    }
    if (folder == "/") return {};
    folder = folderAbove(folder);
  }
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
  const auto path = resolveLinks(file);
  if (!path) return std::nullopt;
  const GitPlace place = placeOfFile(*path);
  std::string problem = place.problem;
  if (place.repository != nullptr) {
    try {
      switch (place.repository->stateOf(place.path)) {
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

}  // namespace soca::cli
