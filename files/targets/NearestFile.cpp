#include "files/targets/NearestFile.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <system_error>
#include <vector>

#include "files/targets/NearestName.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"
#include "platform/text/ShellText.h"

namespace soca {
namespace {

namespace fs = std::filesystem;

// The largest number of entries of a folder that are checked.
constexpr int mostEntries = 20'000;

// The name with which an entry of a folder is compared; empty if it is not a candidate.
using NameOf = std::function<std::string(const fs::directory_entry& entry, bool isLastPart)>;

// An existing name, and its distance from the requested one in letters.
struct Correction {
  std::vector<std::string> parts;
  std::size_t distance = 0;
};

bool isFolder(const fs::directory_entry& entry) {
  std::error_code ignored;
  return entry.is_directory(ignored);
}

// Passes the names of the entries to `offer`.
template <class Offer>
void listFolder(const std::string& folder, const Offer& offer) {
  std::error_code error;
  int count = 0;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (++count > mostEntries) return;
    offer(*entry);
  }
}

std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    parts.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

// Follows the parts from the folder, at each part to the nearest entry.
std::optional<Correction> correct(std::string folder, const std::vector<std::string>& parts,
                                  const NameOf& nameOf) {
  Correction correction;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    NearestName nearest(parts[i]);
    bool isThere = parts[i].empty() || parts[i] == "." || parts[i] == "..";
    const bool isLast = i + 1 == parts.size();
    if (!isThere) {
      listFolder(folder, [&](const fs::directory_entry& entry) {
        const std::string name = nameOf(entry, isLast);
        isThere = isThere || name == parts[i];
        if (!isThere) nearest.offer(name);
      });
    }
    if (!isThere && nearest.name().empty()) return std::nullopt;
    // A difference in case also counts.
    if (!isThere) correction.distance += nearest.distance() + 1;
    correction.parts.push_back(isThere ? parts[i] : nearest.name());
    folder += '/' + correction.parts.back();
  }
  return correction;
}

std::string join(const std::vector<std::string>& parts, char separator) {
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) text += separator;
    text += parts[i];
  }
  return text;
}

// A name that is not UTF-8 cannot be typed, so it is not offered.
std::string nameOfEntry(const fs::directory_entry& entry) {
  std::string name = entry.path().filename().string();
  return fl::decodeFileText(name).encoding == fl::EncodingType::utf8 ? name : std::string();
}

std::string nameOfClass(const fs::directory_entry& entry, bool isLastPart) {
  std::string name = nameOfEntry(entry);
  if (isFolder(entry)) return isLastPart || !isIdentifierName(name) ? std::string() : name;
  const auto stem = stemOfClassFile(name);
  return isLastPart && stem && isIdentifierName(*stem) ? std::string(*stem) : std::string();
}

std::string correctPath(std::string_view path, const NameOf& nameOf) {
  const auto correction = correct(path.starts_with('/') ? "/" : ".", split(path, '/'), nameOf);
  if (!correction || correction->distance == 0) return {};
  return join(correction->parts, '/') + (path.ends_with('/') ? "/" : "");
}

// The first class below the root with that name, in any package.
std::string findInPackages(const std::string& root, std::string_view simpleName) {
  std::error_code error;
  int count = 0;
  for (fs::recursive_directory_iterator entry(root, error), end; !error && entry != end;
       entry.increment(error)) {
    if (++count > mostEntries) break;
    const std::string name = nameOfEntry(*entry);
    if (!isIdentifierName(name)) entry.disable_recursion_pending();
    if (stemOfClassFile(name) != simpleName || isFolder(*entry)) continue;
    auto parts = split(entry->path().lexically_relative(root).string(), '/');
    parts.back() = simpleName;
    return join(parts, '.');
  }
  return {};
}

}  // namespace

std::string nearestPath(std::string_view path) {
  const bool wantsFolder = path.ends_with('/');
  return correctPath(path, [&](const fs::directory_entry& entry, bool isLastPart) {
    if ((!isLastPart || wantsFolder) && !isFolder(entry)) return std::string();
    return nameOfEntry(entry);
  });
}

std::string nearestFolder(std::string_view path) {
  return correctPath(path, [](const fs::directory_entry& entry, bool) {
    return isFolder(entry) ? nameOfEntry(entry) : std::string();
  });
}

std::string nearestClass(std::string_view className, const ClassRoots& roots) {
  const std::vector<std::string> parts = split(className, '.');
  std::optional<Correction> best;
  for (const std::string& root : roots.all()) {
    auto correction = correct(root, parts, nameOfClass);
    // A file that exists but is not the class's is a dangling link.
    if (!correction || correction->distance == 0) continue;
    if (!best || correction->distance < best->distance) best = correction;
  }
  if (best) return join(best->parts, '.');
  for (const std::string& root : roots.all()) {
    std::string found = findInPackages(root, parts.back());
    if (!found.empty() && found != className) return found;
  }
  return {};
}

std::string suggestRoot(std::string_view path) {
  for (std::size_t end = path.size(); end != std::string_view::npos && end > 0;) {
    const std::string_view root = path.substr(0, end);
    end = path.rfind('/', end - 1);
    const std::string_view name = root.substr(end == std::string_view::npos ? 0 : end + 1);
    if (name == "." || name == "..") return {};
    if (name.empty() || isIdentifierName(name) || stemOfClassFile(name)) continue;
    return fmt::format("; did you mean `-p {}`?", fl::makeShellWord(root));
  }
  return {};
}

std::string suggestRootBelow(const std::string& folder) {
  std::error_code error;
  int count = 0;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (++count > mostEntries) break;
    const std::string name = nameOfEntry(*entry);
    if (name.starts_with('.')) entry.disable_recursion_pending();
    if (!name.ends_with(".vlm") || isFolder(*entry)) continue;
    return suggestRoot(entry->path().lexically_proximate(fs::current_path(error)).string());
  }
  return {};
}

}  // namespace soca
