#include "files/targets/RootSearch.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace soca {
namespace {

// The largest number of folders of each type that are considered.
constexpr std::size_t mostFolders = 1'000;
// After this number of lookups only the first few of the folders that may hold a class are asked.
constexpr std::size_t mostLookups = 5'000'000;
constexpr std::size_t fewFolders = 8;
// Of the folders above a root only the nearest are considered.
constexpr int mostAbove = 3;
// The largest number of roots that are suggested.
constexpr std::size_t mostRoots = 4;
// The largest number of packages of which it is known what was found there.
constexpr std::size_t mostPackages = 1'000;

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

// The folder and those between it and its root; nearest first.
std::vector<std::string> chainOf(const ClassRoots& roots, const std::string& folder) {
  const auto package = roots.packageOf(folder);
  return package ? foldersBelow(folder, roots.all()[package->root]) : std::vector<std::string>();
}

}  // namespace

void RootSearch::addMissing(const std::string& superClass, const std::string& folder) {
  const std::size_t hash = std::hash<std::string>()(superClass);
  if (counted_.contains(hash)) return;
  if (paths_.empty()) addNamedFolders();
  Numbers holders = namedHoldersOf(superClass);
  for (const std::size_t number : othersFor(folder)) {
    if (listing_.holdsClass(paths_[number], superClass)) holders.push_back(number);
  }
  if (holders.empty()) return;
  ++counts_[holders];
  counted_.insert(hash);
}

void RootSearch::addFound(const std::string& superClass) {
  const std::size_t dot = superClass.rfind('.');
  const auto package = std::string_view(superClass).substr(0, dot == std::string::npos ? 0 : dot);
  if (found_.size() < mostPackages && !found_.contains(package)) {
    found_.emplace(package, superClass);
  }
}

// --- the folders ---

// Those that contain most of the named ones are the likeliest roots.
void RootSearch::addNamedFolders() {
  std::vector<std::pair<std::string, std::size_t>> folders;
  std::unordered_map<std::string, std::size_t> indices;
  for (const NamedFolder& each : *named_) {
    for (const std::string& folder : chainOf(*roots_, each.path)) {
      const auto [entry, isNew] = indices.try_emplace(folder, folders.size());
      if (isNew) folders.emplace_back(folder, 0);
      ++folders[entry->second].second;
    }
  }
  std::ranges::stable_sort(folders, std::ranges::greater(), [](const auto& f) { return f.second; });
  folders.resize(std::min(folders.size(), mostFolders));
  for (const auto& [folder, count] : folders) {
    const std::size_t number = add(folder, FolderType::named);
    const FolderListing::Names& names = listing_.namesIn(folder);
    for (const std::string& name : names.folders) namedByEntry_[name].push_back(number);
    for (const std::string& name : names.classes) {
      Numbers& numbers = namedByEntry_[name];
      if (numbers.empty() || numbers.back() != number) numbers.push_back(number);
    }
  }
  for (const std::string& root : roots_->all()) addFoldersAbove(root);
}

// A folder whose name is no identifier is in no package, so what is above it is no root for it.
void RootSearch::addFoldersAbove(std::string folder) {
  for (int level = 0; level < mostAbove; ++level) {
    const std::string above = folderAbove(folder);
    if (above.size() <= 1 || !isIdentifierName(folder.substr(above.size() + 1))) return;
    add(above, FolderType::above);
    folder = above;
  }
}

std::size_t RootSearch::add(const std::string& path, FolderType type) {
  const auto [entry, isNew] = numbers_.try_emplace(path, paths_.size());
  if (!isNew) return entry->second;
  paths_.push_back(path);
  types_.push_back(type);
  return entry->second;
}

RootSearch::Numbers RootSearch::namedHoldersOf(const std::string& superClass) {
  const auto entry =
      namedByEntry_.find(std::string_view(superClass).substr(0, superClass.find('.')));
  if (entry == namedByEntry_.end()) return {};
  Numbers holders;
  std::size_t most = lookups_ < mostLookups ? entry->second.size() : fewFolders;
  for (const std::size_t number : entry->second) {
    if (most-- == 0) break;
    ++lookups_;
    if (listing_.holdsClass(paths_[number], superClass)) holders.push_back(number);
  }
  return holders;
}

const RootSearch::Numbers& RootSearch::othersFor(const std::string& folder) {
  if (folder == lastFolder_) return lastOthers_;
  lastFolder_ = folder;
  lastOthers_.clear();
  auto inside = chainOf(*roots_, folder);
  std::ranges::reverse(inside);
  for (const std::string& each : inside) {
    if (paths_.size() >= 3 * mostFolders && !numbers_.contains(each)) continue;
    const std::size_t number = add(each, FolderType::inside);
    if (types_[number] == FolderType::inside) lastOthers_.push_back(number);
  }
  for (std::size_t i = 0; i < types_.size(); ++i) {
    if (types_[i] == FolderType::above) lastOthers_.push_back(i);
  }
  return lastOthers_;
}

// --- the suggestion ---

std::optional<SuggestedRoots> RootSearch::find() {
  if (counts_.empty()) return std::nullopt;
  std::optional<FolderType> decisive;
  if (isOneFound(FolderType::named)) {
    decisive = FolderType::named;
  } else if (isOneFound(FolderType::above) && found_.empty() && areRootsNamed()) {
    decisive = FolderType::above;
  }
  SuggestedRoots result;
  const Numbers chosen = choose(decisive, result.found);
  result.holders = pathsOf(chosen);
  result.isWrong = decisive.has_value();
  if (result.isWrong) result.roots = makeRoots(chosen);
  return result;
}

bool RootSearch::isOneFound(FolderType type) const {
  return std::ranges::any_of(counts_, [&](const auto& entry) {
    return std::ranges::any_of(entry.first, [&](auto number) { return types_[number] == type; });
  });
}

bool RootSearch::areRootsNamed() const {
  return std::ranges::all_of(*named_, [&](const NamedFolder& each) {
    return std::ranges::find(roots_->all(), each.path) != roots_->all().end();
  });
}

RootSearch::Numbers RootSearch::choose(std::optional<FolderType> type, std::size_t& found) const {
  auto left = counts_;
  Numbers chosen;
  while (chosen.size() < mostRoots) {
    Numbers gains(paths_.size());
    for (const auto& [holders, count] : left) {
      for (const std::size_t number : holders) {
        if (!type || types_[number] == *type) gains[number] += count;
      }
    }
    const auto best = std::ranges::max_element(gains);
    if (*best == 0) break;
    found += *best;
    chosen.push_back(static_cast<std::size_t>(best - gains.begin()));
    std::erase_if(left, [&](const auto& entry) {
      return std::ranges::find(entry.first, chosen.back()) != entry.first.end();
    });
  }
  std::ranges::sort(chosen);
  return chosen;
}

std::vector<std::string> RootSearch::pathsOf(const Numbers& numbers) const {
  std::vector<std::string> paths;
  for (const std::size_t number : numbers) paths.push_back(paths_[number]);
  return paths;
}

// The first root that contains a file names its class, so the present root, which contains the
// others, is the last one.
std::vector<std::string> RootSearch::makeRoots(Numbers chosen) {
  bool hasPresent = needsPresentRoot(chosen);
  for (const NamedFolder& each : *named_) {
    if (hasPresent || isUnder(chosen, each.path)) continue;
    const auto chain = chainOf(*roots_, each.path);
    hasPresent = chain.empty() || chosen.size() == mostRoots;
    // A file is in a package rather than in a root itself.
    if (!hasPresent) {
      chosen.push_back(add(each.isOfFile ? chain.back() : chain.front(), FolderType::named));
    }
  }
  std::ranges::sort(chosen);
  auto roots = pathsOf(chosen);
  if (hasPresent) roots.insert(roots.end(), roots_->all().begin(), roots_->all().end());
  return roots;
}

bool RootSearch::needsPresentRoot(const Numbers& chosen) {
  return std::ranges::any_of(found_, [&](const auto& entry) {
    return std::ranges::none_of(chosen, [&](std::size_t number) {
      return listing_.holdsClass(paths_[number], entry.second);
    });
  });
}

bool RootSearch::isUnder(const Numbers& chosen, const std::string& folder) const {
  return std::ranges::any_of(
      chosen, [&](std::size_t number) { return relativeTo(paths_[number], folder).has_value(); });
}

}  // namespace soca
