// The state of the files in one git work tree.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "files/targets/GitFiles.h"
#include "files/targets/GitLibrary.h"

namespace soca {

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
  // The repository whose `.git` is in the folder. Throws GitError.
  static std::unique_ptr<GitRepository> open(const std::string& folder);

  // The top folder of the work tree, without links and without a slash at its end.
  const std::string& workFolder() const { return workFolder_; }

  // A folder or file is not ignored if it has tracked files, for any rules. Throw GitError if the
  // rules cannot be read.
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

  GitRepository(const GitLibrary* git, Repository repository, std::string folder,
                SlowestPattern ownRules);

  // Check what the library is about to open, all of it once. Throw GitError.
  void checkRulesFor(const std::string& path);
  void checkObjects();
  // The rules in a folder and above it.
  struct Rules {
    SlowestPattern slowest;
    // Why they cannot be read; empty if they can.
    std::string problem;
  };
  const Rules& rulesOf(const std::string& folder);
  bool matchesRules(const std::string& path);
  // The contents of the file in the last commit; null if it is not in there.
  const git_oid* committedContent(const std::string& path);
  bool isConflicted(const std::string& path) const;

  const GitLibrary* git_;
  std::mutex mutex_;
  Repository repository_;
  Index index_;
  // With the `.git`.
  std::string folder_;
  std::string workFolder_;
  std::optional<std::string> objectsProblem_;
  // Of the repository as a whole, then by folder.
  SlowestPattern ownRules_;
  std::unordered_map<std::string, Rules> rules_;
  // The last folder of the commit that was looked up, or null if it does not exist; cached because
  // files are queried folder by folder.
  bool hasTree_ = false;
  std::string treeFolder_;
  Object tree_;
};

}  // namespace soca
