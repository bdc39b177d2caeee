#include "files/targets/RootSearch.h"

#include <sys/stat.h>

#include <algorithm>
#include <unordered_map>

namespace soca {
namespace {

// The largest numbers of superclasses and of folders that are considered, and of files looked for.
constexpr std::size_t mostNames = 1'000;
constexpr std::size_t mostFolders = 100;
constexpr std::size_t mostLookups = 20'000;
// Of the folders above a root only the nearest are considered.
constexpr int mostAbove = 3;
// The largest number of roots that are suggested.
constexpr std::size_t mostRoots = 4;

bool isFile(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

bool holdsClass(const std::string& root, std::string_view className) {
  const std::string stem = (root == "/" ? root : root + '/') + relativePathOfClass(className);
  return isFile(stem + ".vlm") || isFile(stem + ".p");
}

// The folder above; empty for "/".
std::string folderAbove(const std::string& folder) {
  const std::size_t slash = folder.rfind('/');
  if (folder == "/" || slash == std::string::npos) return {};
  return folder.substr(0, std::max<std::size_t>(slash, 1));
}

// The folder and those above it, as long as they are below `end`; nearest first.
std::vector<std::string> foldersBelow(std::string folder, const std::string& end) {
  std::vector<std::string> folders;
  while (!folder.empty() && folder != end && relativeTo(end, folder)) {
    folders.push_back(folder);
    folder = folderAbove(folder);
  }
  return folders;
}

// The folders that may be roots, in the order in which they are preferred.
class Candidates {
 public:
  // The number of the folder.
  std::size_t add(const std::string& folder) {
    const auto [entry, isNew] = numbers_.try_emplace(folder, folders_.size());
    if (isNew) folders_.push_back(folder);
    return entry->second;
  }

  std::size_t size() const { return folders_.size(); }
  const std::string& operator[](std::size_t number) const { return folders_[number]; }

 private:
  std::vector<std::string> folders_;
  std::unordered_map<std::string, std::size_t> numbers_;
};

// For each candidate the numbers of the superclasses that are under it.
using Finds = std::vector<std::vector<std::size_t>>;

// Takes the candidate with the most superclasses, then the one with the most of the others, and so
// on. Returns their numbers, and counts the superclasses.
std::vector<std::size_t> choose(const Finds& finds, std::size_t nameCount, std::size_t& found) {
  std::vector<bool> isCovered(nameCount);
  const auto countOf = [&](const std::vector<std::size_t>& names) {
    return std::ranges::count_if(names, [&](std::size_t name) { return !isCovered[name]; });
  };
  std::vector<std::size_t> chosen;
  while (chosen.size() < mostRoots) {
    const auto best = std::ranges::max_element(finds, {}, countOf);
    if (best == finds.end() || countOf(*best) == 0) break;
    found += static_cast<std::size_t>(countOf(*best));
    for (const std::size_t name : *best) isCovered[name] = true;
    chosen.push_back(static_cast<std::size_t>(best - finds.begin()));
  }
  std::ranges::sort(chosen);
  return chosen;
}

// One search over what was collected.
class Search {
 public:
  Search(const ClassRoots& roots, const std::vector<NamedFolder>& named)
      : roots_(roots), named_(named) {
    for (const NamedFolder& each : named_) addChain(each.path);
    namedCount_ = candidates_.size();
    finds_.resize(namedCount_);
  }

  void look(std::size_t name, const std::string& className, const std::string& folder) {
    for (std::size_t i = 0; i < namedCount_; ++i) lookUnder(i, name, className);
    const auto package = roots_.packageOf(folder);
    if (!package) return;
    const std::string& root = roots_.all()[package->root];
    auto inside = foldersBelow(folder, root);
    std::ranges::reverse(inside);
    for (const std::string& each : inside) lookUnder(each, name, className);
    std::string above = folderAbove(root);
    for (int level = 0; level < mostAbove && above.size() > 1; ++level) {
      lookUnder(above, name, className);
      above = folderAbove(above);
    }
  }

  std::optional<SuggestedRoots> result(std::size_t nameCount, bool hasFound) {
    SuggestedRoots result;
    auto chosen = choose(finds_, nameCount, result.found);
    if (chosen.empty()) return std::nullopt;
    result.holders = pathsOf(chosen);
    const bool isNamed = std::ranges::any_of(
        finds_.begin(), finds_.begin() + static_cast<std::ptrdiff_t>(namedCount_),
        [](const auto& names) { return !names.empty(); });
    if (isNamed) addUncovered(chosen);
    result.roots = pathsOf(chosen);
    result.isForAll = isNamed || !hasFound;
    return result;
  }

 private:
  std::vector<std::string> pathsOf(const std::vector<std::size_t>& numbers) const {
    std::vector<std::string> paths;
    for (const std::size_t number : numbers) paths.push_back(candidates_[number]);
    return paths;
  }

  void addChain(const std::string& folder) {
    const auto package = roots_.packageOf(folder);
    if (!package) return;
    for (const std::string& each : foldersBelow(folder, roots_.all()[package->root])) {
      if (candidates_.size() < mostFolders) candidates_.add(each);
    }
  }

  void lookUnder(const std::string& folder, std::size_t name, const std::string& className) {
    const std::size_t number = candidates_.add(folder);
    if (number >= namedCount_) lookUnder(number, name, className);
  }

  void lookUnder(std::size_t number, std::size_t name, const std::string& className) {
    if (finds_.size() <= number) finds_.resize(number + 1);
    if (lookups_++ >= mostLookups) return;
    if (holdsClass(candidates_[number], className)) finds_[number].push_back(name);
  }

  // Every named folder must be on a root. A file is in a package rather than in a root itself.
  void addUncovered(std::vector<std::size_t>& chosen) {
    for (const NamedFolder& each : named_) {
      const auto holds = [&](std::size_t root) {
        return relativeTo(candidates_[root], each.path).has_value();
      };
      if (std::ranges::any_of(chosen, holds) || chosen.size() == mostRoots) continue;
      const auto package = roots_.packageOf(each.path);
      if (!package) continue;
      const auto chain = foldersBelow(each.path, roots_.all()[package->root]);
      if (!chain.empty()) {
        chosen.push_back(candidates_.add(each.isOfFile ? chain.back() : chain.front()));
      }
    }
    std::ranges::sort(chosen);
  }

  const ClassRoots& roots_;
  const std::vector<NamedFolder>& named_;
  Candidates candidates_;
  // The candidates before this one are folders that were named, or between one and its root.
  std::size_t namedCount_ = 0;
  Finds finds_;
  std::size_t lookups_ = 0;
};

}  // namespace

void RootSearch::addMissing(const std::string& superClass, const std::string& folder) {
  if (missing_.size() < mostNames && met_.insert(superClass).second) {
    missing_.emplace_back(superClass, folder);
  }
}

std::optional<SuggestedRoots> RootSearch::find() const {
  if (missing_.empty()) return std::nullopt;
  Search search(*roots_, *named_);
  for (std::size_t i = 0; i < missing_.size(); ++i) {
    search.look(i, missing_[i].first, missing_[i].second);
  }
  return search.result(missing_.size(), hasFound_);
}

}  // namespace soca
