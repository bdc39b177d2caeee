#include "files/targets/GitRepository.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <utility>

#include "files/targets/ClassRoots.h"

namespace soca {
namespace {

// Stages of an index entry: 0 is the usual one, the others are the sides of a conflict.
constexpr int usualStage = 0;
constexpr auto conflictStages = std::to_array<int>({1, 2, 3});

std::string lastError(const GitLibrary& git) {
  const git_error* error = git.error_last();
  return error == nullptr || error->message == nullptr ? "unknown error" : error->message;
}

// Without a list of safe folders, some versions report that the list is missing instead of the
// fault.
bool isOthers(const GitLibrary& git, int error) {
  if (error == GIT_EOWNER) return true;
  const git_error* last = git.error_last();
  return error == GIT_ENOTFOUND && last != nullptr && last->klass == GIT_ERROR_CONFIG;
}

// Empty for the work folder.
std::string folderOf(const std::string& path) {
  const std::size_t end = path.rfind('/');
  return end == std::string::npos ? std::string() : path.substr(0, end);
}

[[noreturn]] void failToOpen(const GitLibrary& git, const std::string& folder, int error) {
  if (isOthers(git, error)) {
    throw GitError(
        fmt::format("the git repository of '{0}' belongs to another user; if you trust it, run "
                    "'git config --global --add safe.directory {0}'",
                    folder));
  }
  throw GitError(
      fmt::format("the git repository of '{}' can't be read: {}", folder, lastError(git)));
}

}  // namespace

std::unique_ptr<GitRepository> GitRepository::open(const std::string& folder) {
  const GitLibrary* git = gitLibrary();
  if (git == nullptr) {
    throw GitError(
        "libgit2, which reads git repositories, is not installed; install it (on Debian 12 the "
        "package libgit2-1.5)");
  }
  auto ownRules = checkRepositoryFiles(folder);
  git_repository* opened = nullptr;
  const int error =
      git->repository_open_ext(&opened, folder.c_str(), GIT_REPOSITORY_OPEN_NO_SEARCH, nullptr);
  if (error != 0) failToOpen(*git, folder, error);
  Repository repository(opened);
  if (git->repository_workdir(opened) == nullptr) {
    throw GitError(
        fmt::format("'{}/.git' says that it has no work tree; set core.bare to false", folder));
  }
  return std::unique_ptr<GitRepository>(
      new GitRepository(git, std::move(repository), folder, std::move(ownRules)));
}

GitRepository::GitRepository(const GitLibrary* git, Repository repository, std::string folder,
                             SlowestPattern ownRules)
    : git_(git),
      repository_(std::move(repository)),
      folder_(std::move(folder)),
      ownRules_(std::move(ownRules)) {
  git_index* index = nullptr;
  if (const int error = git_->repository_index(&index, repository_.get())) {
    failToOpen(*git_, folder_, error);
  }
  index_.reset(index);
  const std::string workFolder = git_->repository_workdir(repository_.get());
  workFolder_ = resolveLinks(workFolder).value_or(workFolder);
}

bool GitRepository::isFolderIgnored(const std::string& path) {
  const std::lock_guard lock(mutex_);
  const std::string prefix = path + '/';
  if (git_->index_find_prefix(nullptr, index_.get(), prefix.c_str()) == 0) return false;
  return matchesRules(prefix);
}

bool GitRepository::isFileIgnored(const std::string& path) {
  const std::lock_guard lock(mutex_);
  if (git_->index_get_bypath(index_.get(), path.c_str(), usualStage) != nullptr) return false;
  return !isConflicted(path) && matchesRules(path);
}

const GitRepository::Rules& GitRepository::rulesOf(const std::string& folder) {
  if (const auto known = rules_.find(folder); known != rules_.end()) return known->second;
  Rules rules;
  if (folder.empty()) {
    rules.slowest = ownRules_;
  } else {
    rules = rulesOf(folderOf(folder));
  }
  try {
    const std::string place = workFolder_ + '/' + (folder.empty() ? "" : folder + '/');
    for (const char* name : {".gitignore", ".gitattributes"}) {
      auto slowest = checkRules(place + name);
      if (slowest.stars > rules.slowest.stars) rules.slowest = std::move(slowest);
    }
  } catch (const GitError& error) {
    if (rules.problem.empty()) rules.problem = error.what();
  }
  return rules_.emplace(folder, std::move(rules)).first->second;
}

void GitRepository::checkRulesFor(const std::string& path) {
  const Rules& rules = rulesOf(folderOf(path));
  if (!rules.problem.empty()) throw GitError(rules.problem);
  checkMatching(rules.slowest, path);
}

void GitRepository::checkObjects() {
  if (!objectsProblem_) {
    try {
      objectsProblem_.emplace();
      checkObjectFiles(folder_);
    } catch (const GitError& error) {
      objectsProblem_ = error.what();
    }
  }
  if (!objectsProblem_->empty()) throw GitError(*objectsProblem_);
}

bool GitRepository::matchesRules(const std::string& path) {
  checkRulesFor(path);
  int isIgnored = 0;
  return git_->ignore_path_is_ignored(&isIgnored, repository_.get(), path.c_str()) == 0 &&
         isIgnored != 0;
}

GitStateType GitRepository::stateOf(const std::string& path) {
  const std::lock_guard lock(mutex_);
  checkObjects();
  checkRulesFor(path);
  const git_index_entry* entry = git_->index_get_bypath(index_.get(), path.c_str(), usualStage);
  if (entry == nullptr) {
    return isConflicted(path) ? GitStateType::changed : GitStateType::untracked;
  }
  const git_oid* committed = committedContent(path);
  if (committed == nullptr || git_->oid_equal(committed, &entry->id) == 0) {
    return GitStateType::changed;
  }
  git_oid content = {};
  if (git_->repository_hashfile(&content, repository_.get(), path.c_str(), GIT_OBJECT_BLOB,
                                nullptr) != 0) {
    throw GitError(fmt::format("git can't read it: {}", lastError(*git_)));
  }
  return git_->oid_equal(&content, &entry->id) != 0 ? GitStateType::committed
                                                    : GitStateType::changed;
}

const git_oid* GitRepository::committedContent(const std::string& path) {
  const std::string folder = folderOf(path);
  if (!hasTree_ || folder != treeFolder_) {
    git_object* tree = nullptr;
    git_->revparse_single(&tree, repository_.get(), ("HEAD:" + folder).c_str());
    tree_.reset(tree);
    treeFolder_ = folder;
    hasTree_ = true;
  }
  if (tree_ == nullptr) return nullptr;
  const auto* entry = git_->tree_entry_byname(reinterpret_cast<const git_tree*>(tree_.get()),
                                              path.c_str() + (path.rfind('/') + 1));
  return entry == nullptr ? nullptr : git_->tree_entry_id(entry);
}

bool GitRepository::isConflicted(const std::string& path) const {
  return std::ranges::any_of(conflictStages, [&](int stage) {
    return git_->index_get_bypath(index_.get(), path.c_str(), stage) != nullptr;
  });
}

}  // namespace soca
