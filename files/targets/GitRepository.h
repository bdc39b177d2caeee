// The state of the files in one git work tree.
#pragma once

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>

#include "files/targets/GitLibrary.h"

namespace soca {

// A repository that cannot be read; `what` is the reason and the remedy.
class GitError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class GitStateType {
  // The contents are those of the last commit, in the index too.
  committed,
  changed,
  // Not in the index, whether ignored or not.
  untracked,
};

// Reads the index once, so later commits and additions are not seen. Writes nothing. Safe to use
// from several threads. All paths are relative to the work folder.
class GitRepository {
 public:
  // The repository whose work tree contains the folder, or null. Throws GitError.
  static std::unique_ptr<GitRepository> open(const std::string& folder);

  // The top folder of the work tree, without links and without a slash at its end.
  const std::string& workFolder() const { return workFolder_; }

  // A folder or file is not ignored if it has tracked files, for any rules.
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
  // The contents of the file in the last commit; null if it is not in there.
  const git_oid* committedContent(const std::string& path);
  bool isConflicted(const std::string& path) const;

  const GitLibrary* git_;
  std::mutex mutex_;
  Repository repository_;
  Index index_;
  std::string workFolder_;
  // The last folder of the commit that was looked up, or null if it does not exist; cached because
  // files are queried folder by folder.
  bool hasTree_ = false;
  std::string treeFolder_;
  Object tree_;
};

}  // namespace soca
