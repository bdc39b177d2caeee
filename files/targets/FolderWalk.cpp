#include "files/targets/FolderWalk.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <tuple>
#include <utility>

#include "platform/paths/SourceReader.h"
#include "platform/paths/SystemCall.h"
#include "platform/text/FileText.h"

namespace soca {
namespace {

using fl::filesystem::isNotThere;
using fl::filesystem::uninterrupted;

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

using Folder = std::unique_ptr<DIR, CloseFolder>;

std::string pathIn(const std::string& folder, const std::string& name) {
  return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

// Whether the name is that of a source file but for the case of its extension.
bool hasExtensionInCapitals(std::string_view name) {
  constexpr std::string_view extension = ".vlm";
  if (name.size() < extension.size()) return false;
  return std::ranges::equal(name.substr(name.size() - extension.size()), extension, {}, [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
}

bool isUtf8(const std::string& path) {
  return fl::decodeFileText(path).encoding == fl::EncodingType::utf8;
}

// The place of an entry of the folder at `folder`.
std::string placeIn(const GitPlace& folder, const std::string& name) {
  return folder.path.empty() ? name : folder.path + '/' + name;
}

// Whether there may be something at the path.
bool mayExist(const std::string& path) {
  struct stat status = {};
  return uninterrupted([&] { return ::lstat(path.c_str(), &status); }) == 0 || !isNotThere(errno);
}

unsigned char typeOf(const struct stat& status) {
  return static_cast<unsigned char>(IFTODT(status.st_mode));
}

// DT_DIR, DT_REG, or another type of entry; empty if it cannot be determined, with the reason in
// `errno`. A link to a file is treated as that file, and a link to a folder stays a link; a
// dangling link is treated as a file, which then cannot be read.
std::optional<unsigned char> entryType(const std::string& path, unsigned char type) {
  struct stat status = {};
  if (type == DT_UNKNOWN) {
    if (uninterrupted([&] { return ::lstat(path.c_str(), &status); }) == 0) {
      type = typeOf(status);
    } else if (!isNotThere(errno)) {
      return std::nullopt;
    }
  }
  if (type != DT_LNK) return type;
  if (uninterrupted([&] { return ::stat(path.c_str(), &status); }) == 0) {
    return S_ISDIR(status.st_mode) ? type : typeOf(status);
  }
  if (!isNotThere(errno)) return std::nullopt;
  return DT_REG;
}

Folder openFolder(const std::string& path) {
  while (true) {
    errno = 0;
    Folder folder(::opendir(path.c_str()));
    if (folder != nullptr || errno != EINTR) return folder;
  }
}

// Null at the end of the folder, or with the reason in `errno`.
const dirent* nextEntry(const Folder& folder) {
  while (true) {
    errno = 0;
    const dirent* entry = ::readdir(folder.get());
    if (entry != nullptr || errno != EINTR) return entry;
  }
}

}  // namespace

FolderWalk::FolderWalk(const ClassRoots* roots, Git* git, WalkType type, std::string folder)
    : roots_(roots), git_(git), type_(type), start_(resolveLinks(folder).value_or(folder)) {
  enterAnyway(std::move(folder));
}

std::optional<FoundFile> FolderWalk::next() {
  while (true) {
    if (!unreadable_.empty()) {
      FoundFile unreadable = std::move(unreadable_.front());
      unreadable_.pop_front();
      return unreadable;
    }
    if (levels_.empty()) return std::nullopt;
    Level& level = levels_.back();
    if (level.entries.empty()) {
      levels_.pop_back();
      continue;
    }
    const Entry entry = std::move(level.entries.back());
    level.entries.pop_back();
    if (entry.isFolder) {
      enterFolderIn(level, entry);
    } else if (!isIgnored(level, entry)) {
      return describe(level, entry);
    }
  }
}

void FolderWalk::enterAnyway(std::string folder) {
  GitPlace git = askGit(folder);
  const bool isIgnored = !git.path.empty() && isIgnoredIn(git, git.path, true);
  enter(std::move(folder), isIgnored ? GitPlace() : std::move(git));
}

void FolderWalk::enterFolderIn(const Level& level, const Entry& entry) {
  std::string folder = pathIn(level.folder, entry.name);
  if (entry.isLink && !isNewFolder(folder)) return;
  if (std::ranges::find(roots_->all(), folder) != roots_->all().end()) {
    return enterAnyway(std::move(folder));
  }
  if (isIgnored(level, entry) && !roots_->hasRootAtOrBelow(folder)) return;
  GitPlace git = level.git;
  if (git.repository != nullptr) git.path = placeIn(git, entry.name);
  if (mayExist(pathIn(folder, ".git"))) git = askGit(folder);
  enter(std::move(folder), std::move(git));
}

void FolderWalk::enter(std::string folder, GitPlace git) {
  Level level;
  level.folder = std::move(folder);
  level.package = roots_->packageOf(level.folder);
  level.isMisnamed = !isUtf8(level.folder);
  level.git = std::move(git);
  level.entries = readEntries(level);
  levels_.push_back(std::move(level));
}

GitPlace FolderWalk::askGit(const std::string& folder) {
  if (type_ == WalkType::everything) return {};
  const auto path = resolveLinks(folder);
  GitPlace place = path ? git_->placeOfFolder(*path) : GitPlace();
  if (!place.problem.empty()) addWarning(place.problem);
  return place;
}

void FolderWalk::addWarning(const std::string& problem) {
  if (std::ranges::find(warnings_, problem) == warnings_.end()) warnings_.push_back(problem);
}

bool FolderWalk::isIgnored(const Level& level, const Entry& entry) {
  return isIgnoredIn(level.git, placeIn(level.git, entry.isFolder ? entry.name : fileName(entry)),
                     entry.isFolder);
}

bool FolderWalk::isIgnoredIn(const GitPlace& git, const std::string& path, bool isFolder) {
  if (git.repository == nullptr) return false;
  try {
    return isFolder ? git.repository->isFolderIgnored(path) : git.repository->isFileIgnored(path);
  } catch (const GitError& error) {
    addWarning(error.what());
    return false;
  }
}

bool FolderWalk::isNewFolder(const std::string& link) {
  auto folder = resolveLinks(link);
  if (!folder && !isNotThere(errno)) addUnreadable(link, errno);
  if (!folder || relativeTo(start_, *folder) || relativeTo(*folder, start_)) return false;
  return linked_.insert(std::move(*folder)).second;
}

void FolderWalk::addUnreadable(std::string path, int error) {
  unreadable_.push_back({.type = FoundFile::Type::unreadable,
                         .path = std::move(path),
                         .className = {},
                         .reason = std::strerror(error)});
}

std::vector<FolderWalk::Entry> FolderWalk::readEntries(const Level& level) {
  std::vector<Entry> entries;
  const Folder folder = openFolder(level.folder);
  if (folder != nullptr) {
    while (const dirent* entry = nextEntry(folder)) {
      addEntry(level, entry->d_name, entry->d_type, entries);
    }
  }
  if (errno != 0) addUnreadable(level.folder, errno);
  // The file of a class precedes the folder of a package with its name, as `a.B` precedes `a.B.C`.
  // The entries are taken from the back, so the order is reversed.
  std::ranges::sort(entries, std::ranges::greater(), [](const Entry& entry) {
    return std::tie(entry.name, entry.isFolder, entry.hasSource);
  });
  // A source file and the p-file after it are one class.
  const auto isSameClass = [](const Entry& source, const Entry& pFile) {
    return !source.isFolder && !pFile.isFolder && source.name == pFile.name;
  };
  entries.erase(std::unique(entries.begin(), entries.end(), isSameClass), entries.end());
  return entries;
}

void FolderWalk::addEntry(const Level& level, const std::string& name, unsigned char type,
                          std::vector<Entry>& entries) {
  const auto stem = stemOfClassFile(name);
  const bool hasCapitals = !stem && hasExtensionInCapitals(name);
  const bool mayBeFolder =
      type == DT_DIR || type == DT_UNKNOWN || (type == DT_LNK && type_ == WalkType::everything);
  if (!stem && !hasCapitals && !mayBeFolder) return;
  if (name == "." || name == "..") return;
  const auto known = entryType(pathIn(level.folder, name), type);
  // A class file that cannot be looked at is a failure of its class, as soon as that is described.
  if (!known && !stem) return addUnreadable(pathIn(level.folder, name), errno);
  type = known.value_or(DT_REG);
  // A link to a folder keeps its type.
  const bool isLink = type == DT_LNK;
  if (type == DT_DIR || isLink) {
    const bool isWanted = !isLink || type_ == WalkType::everything;
    if (isWanted && isWorthEntering(level, name)) {
      entries.push_back({.name = name, .isFolder = true, .isLink = isLink});
    }
    return;
  }
  if (hasCapitals && type == DT_REG) entries.push_back({.name = name, .hasCapitals = true});
  if (!stem) return;
  entries.push_back({.name = std::string(*stem),
                     .isRegular = type == DT_REG,
                     .hasSource = name.ends_with(".vlm")});
}

bool FolderWalk::isWorthEntering(const Level& level, const std::string& name) const {
  const bool hasClasses = level.package || level.isMisnamed;
  if (hasClasses && (isIdentifierName(name) || !isUtf8(name))) return true;
  return roots_->hasRootAtOrBelow(pathIn(level.folder, name));
}

std::string FolderWalk::fileName(const Entry& entry) {
  if (entry.hasCapitals) return entry.name;
  return entry.name + (entry.hasSource ? ".vlm" : ".p");
}

FoundFile FolderWalk::describe(const Level& level, const Entry& entry) {
  FoundFile file;
  file.path = pathIn(level.folder, fileName(entry));
  const bool hasClassName = !entry.hasCapitals && isIdentifierName(entry.name);
  if (!entry.isRegular || !level.package || !hasClassName) {
    const bool hasName = (!level.package && !level.isMisnamed) || isUtf8(file.path);
    const bool isOther = entry.isRegular && level.package.has_value();
    file.type = !hasName  ? FoundFile::Type::misnamed
                : isOther ? FoundFile::Type::otherName
                          : FoundFile::Type::noClass;
    return file;
  }
  file.className = level.package->prefix + entry.name;
  file.root = level.package->root;
  return file;
}

}  // namespace soca
