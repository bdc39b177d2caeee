#include "cli/FolderWalk.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <tuple>
#include <utility>

namespace soca::cli {
namespace {

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

std::string pathIn(const std::string& folder, const std::string& name) {
  return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

unsigned char typeOf(const struct stat& status) {
  return static_cast<unsigned char>(IFTODT(status.st_mode));
}

// DT_DIR, DT_REG, or another type of entry. A link to a file counts as that file, and one to a
// folder stays a link; one that leads nowhere counts as a file, which then can't be read.
unsigned char entryType(const std::string& path, unsigned char type) {
  struct stat status = {};
  if (type == DT_UNKNOWN) {
    if (::lstat(path.c_str(), &status) != 0) return DT_UNKNOWN;
    type = typeOf(status);
  }
  if (type != DT_LNK) return type;
  if (::stat(path.c_str(), &status) != 0) return DT_REG;
  return S_ISDIR(status.st_mode) ? type : typeOf(status);
}

}  // namespace

FolderWalk::FolderWalk(const ClassRoots* roots, std::string folder) : roots_(roots) {
  enter(std::move(folder));
}

std::optional<FoundFile> FolderWalk::next() {
  while (true) {
    if (unreadable_) return std::exchange(unreadable_, std::nullopt);
    if (levels_.empty()) return std::nullopt;
    Level& level = levels_.back();
    if (level.entries.empty()) {
      levels_.pop_back();
      continue;
    }
    const Entry entry = std::move(level.entries.back());
    level.entries.pop_back();
    if (!entry.isFolder) return describe(level, entry);
    enter(pathIn(level.folder, entry.name));
  }
}

void FolderWalk::enter(std::string folder) {
  Level level;
  level.folder = std::move(folder);
  level.package = roots_->packageOf(level.folder);
  level.entries = readEntries(level);
  levels_.push_back(std::move(level));
}

std::vector<FolderWalk::Entry> FolderWalk::readEntries(const Level& level) {
  std::vector<Entry> entries;
  const std::unique_ptr<DIR, CloseFolder> folder(::opendir(level.folder.c_str()));
  if (folder != nullptr) {
    errno = 0;
    while (const dirent* entry = ::readdir(folder.get())) {
      addEntry(level, entry->d_name, entry->d_type, entries);
      errno = 0;
    }
  }
  if (errno != 0) {
    unreadable_ = FoundFile{.type = FoundFile::Type::unreadable,
                            .path = level.folder,
                            .className = {},
                            .reason = std::strerror(errno)};
  }
  // The file of a class comes before the folder of a package with its name, as `a.B` does before
  // `a.B.C`; taken from the back, so the other way round.
  std::ranges::sort(entries, std::ranges::greater(), [](const Entry& entry) {
    return std::tie(entry.name, entry.isFolder, entry.hasSource);
  });
  // A source file and the p-file behind it are one class.
  const auto isSameClass = [](const Entry& source, const Entry& pFile) {
    return !source.isFolder && !pFile.isFolder && source.name == pFile.name;
  };
  entries.erase(std::unique(entries.begin(), entries.end(), isSameClass), entries.end());
  return entries;
}

void FolderWalk::addEntry(const Level& level, const std::string& name, unsigned char type,
                          std::vector<Entry>& entries) const {
  const auto stem = stemOfClassFile(name);
  if (!stem && type != DT_DIR && type != DT_UNKNOWN) return;
  if (name == "." || name == "..") return;
  type = entryType(pathIn(level.folder, name), type);
  if (type == DT_DIR) {
    if (isWorthEntering(level, name)) entries.push_back({.name = name, .isFolder = true});
    return;
  }
  if (!stem || type == DT_LNK) return;
  entries.push_back({.name = std::string(*stem),
                     .isRegular = type == DT_REG,
                     .hasSource = name.ends_with(".vlm")});
}

bool FolderWalk::isWorthEntering(const Level& level, const std::string& name) const {
  if (level.package && isIdentifierName(name)) return true;
  return roots_->hasRootAtOrBelow(pathIn(level.folder, name));
}

FoundFile FolderWalk::describe(const Level& level, const Entry& entry) {
  FoundFile file;
  file.path = pathIn(level.folder, entry.name) + (entry.hasSource ? ".vlm" : ".p");
  if (!entry.isRegular || !level.package || !isIdentifierName(entry.name)) {
    file.type = FoundFile::Type::noClass;
    return file;
  }
  file.className = level.package->prefix + entry.name;
  file.root = level.package->root;
  return file;
}

}  // namespace soca::cli
