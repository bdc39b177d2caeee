#include "files/targets/ClassRoots.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

#include "platform/paths/SourceReader.h"
#include "platform/text/Conversions.h"
#include "platform/text/Letters.h"

namespace soca {
namespace {

// `a.b.` for `a/b`; empty if a segment is no identifier.
std::optional<std::string> packagePrefix(std::string_view relativeFolder) {
  std::string prefix;
  while (!relativeFolder.empty()) {
    const std::size_t slash = relativeFolder.find('/');
    const std::string_view segment = relativeFolder.substr(0, slash);
    if (!isIdentifierName(segment)) return std::nullopt;
    prefix.append(segment).append(".");
    if (slash == std::string_view::npos) break;
    relativeFolder.remove_prefix(slash + 1);
  }
  return prefix;
}

std::string join(std::string_view folder, std::string_view relative) {
  std::string path(folder);
  if (relative.empty()) return path;
  if (!path.ends_with('/')) path += '/';
  return path.append(relative);
}

// The path of a folder without links. Of a file only the folder is resolved, because the file may
// be a link to another place.
std::optional<std::string> resolveFolderOf(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return resolveLinks(path);
  const std::size_t slash = path.rfind('/');
  const auto folder = resolveLinks(path.substr(0, std::max<std::size_t>(slash, 1)));
  if (!folder) return std::nullopt;
  return join(*folder, path.substr(slash + 1));
}

}  // namespace

std::optional<ClassRoots::Package> ClassRoots::packageOf(std::string_view folder) const {
  for (std::size_t i = 0; i < roots_.size(); ++i) {
    const auto relative = relativeTo(roots_[i], folder);
    if (!relative) continue;
    if (auto prefix = packagePrefix(*relative)) return Package{i, std::move(*prefix)};
  }
  return std::nullopt;
}

bool ClassRoots::hasRootAtOrBelow(std::string_view folder) const {
  return std::ranges::any_of(
      roots_, [&](const std::string& root) { return relativeTo(folder, root).has_value(); });
}

std::optional<std::string> ClassRoots::fileInFrontOf(std::size_t root,
                                                     std::string_view className) const {
  for (std::size_t i = 0; i < root; ++i) {
    const std::string stem = join(roots_[i], relativePathOfClass(className));
    for (const char* extension : {".p", ".vlm"}) {
      if (fl::filesystem::stampOf(stem + extension)) return stem + extension;
    }
  }
  return std::nullopt;
}

std::string ClassRoots::underRoot(const std::string& path) const {
  for (const std::string& root : roots_) {
    if (relativeTo(root, path)) return path;
  }
  const auto resolved = resolveFolderOf(path);
  if (!resolved) return path;
  for (const std::string& root : roots_) {
    const auto resolvedRoot = resolveLinks(root);
    if (!resolvedRoot) continue;
    if (const auto relative = relativeTo(*resolvedRoot, *resolved)) return join(root, *relative);
  }
  return path;
}

std::string ClassRoots::listing() const {
  std::string text;
  for (const std::string& root : roots_) {
    if (!text.empty()) text += ", ";
    text.append("'").append(root).append("'");
  }
  return text;
}

std::optional<std::string_view> relativeTo(std::string_view folder, std::string_view path) {
  if (!path.starts_with(folder)) return std::nullopt;
  std::string_view rest = path.substr(folder.size());
  if (rest.empty()) return rest;
  if (folder.ends_with('/')) return rest;
  if (!rest.starts_with('/')) return std::nullopt;
  return rest.substr(1);
}

std::optional<std::string> resolveLinks(const std::string& path) {
  char* resolved = ::realpath(path.c_str(), nullptr);
  if (resolved == nullptr) return std::nullopt;
  std::string result = resolved;
  std::free(resolved);
  return result;
}

bool isIdentifierName(std::string_view name) {
  return fl::isIdentifier(fl::i18n::to_ustring(name));
}

std::optional<std::string_view> stemOfClassFile(std::string_view fileName) {
  for (const std::string_view extension : {".vlm", ".p"}) {
    if (!fileName.ends_with(extension)) continue;
    return fileName.substr(0, fileName.size() - extension.size());
  }
  return std::nullopt;
}

std::string relativePathOfClass(std::string_view className) {
  std::string path(className);
  std::ranges::replace(path, '.', '/');
  return path;
}

}  // namespace soca
