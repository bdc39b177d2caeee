// What git knows of the files in one work tree.
#pragma once

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>

#include "files/targets/GitLibrary.h"

namespace soca {

// A repository that can't be asked; `what` says why, and what to do about it.
class GitError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class GitStateType {
  // The content is that of the last commit, in the index too.
  committed,
  changed,
  // Not in the index, be it ignored or not.
  untracked,
};

// Reads the index once; what is committed or added later goes unseen. Writes nothing. May be used
// by several threads at once. All paths are relative to the work folder.
class GitRepository {
 public:
  // The repository whose work tree the folder lies in, or null. Throws GitError.
  static std::unique_ptr<GitRepository> open(const std::string& folder);

  // The top folder of the work tree, without links and without a slash at its end.
  const std::string& workFolder() const { return workFolder_; }

  // What has tracked files in it is not ignored, whatever the rules say of it.
  bool isFolderIgnored(const std::string& path);
  bool isFileIgnored(const std::string& path);

  // Throws GitError.
  GitStateType stateOf(const std::string& path);

 private:
  template <auto release>
  struct Release {
    template <class Object>
    void operator()(Object* object) const {
      if (const auto* git = gitLibrary()) (git->*release)(object);
    }
  };
  using Repository = std::unique_ptr<git_repository, Release<&GitLibrary::repository_free>>;
  using Index = std::unique_ptr<git_index, Release<&GitLibrary::index_free>>;
  using Object = std::unique_ptr<git_object, Release<&GitLibrary::object_free>>;

  GitRepository(const GitLibrary* git, Repository repository);

  bool matchesRules(const std::string& path);
  // The file's content in the last commit; null if it has none there.
  const git_oid* committedContent(const std::string& path);
  bool isConflicted(const std::string& path) const;

  const GitLibrary* git_;
  std::mutex mutex_;
  Repository repository_;
  Index index_;
  std::string workFolder_;
  // The folder of the last commit that was looked into last, null if it is not there: files come
  // folder by folder.
  bool hasTree_ = false;
  std::string treeFolder_;
  Object tree_;
};

}  // namespace soca
