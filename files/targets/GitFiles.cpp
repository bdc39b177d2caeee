#include "files/targets/GitFiles.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <ranges>
#include <set>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/paths/SourceReader.h"

namespace soca {
namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t maximumRulesSize = 16'000'000;
// Matching takes time with a power of these: for a name of 255 characters and three stars, some ten
// milliseconds.
constexpr int maximumStars = 3;
constexpr int maximumFolderStars = 4;
// As git has it, for files that include files.
constexpr int maximumDepth = 10;

[[noreturn]] void fail(const fs::path& path, std::string_view reason) {
  throw GitError(fmt::format("'{}' {}", path.string(), reason));
}

// Throws for what may be there and cannot be looked at.
fs::file_status statusOf(const fs::path& path) {
  std::error_code error;
  const auto status = fs::status(path, error);
  if (!fs::status_known(status)) fail(path, "can't be read: " + error.message());
  return status;
}

// What is neither a file nor a folder may be a pipe.
void checkFile(const fs::path& path) {
  const auto status = statusOf(path);
  if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status)) {
    fail(path, "is no regular file; remove it");
  }
}

void checkFilesBelow(const fs::path& folder) {
  checkFile(folder);
  std::error_code error;
  fs::recursive_directory_iterator entries(folder, error);
  for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
    const bool isUsual = entries->is_regular_file(error) || entries->is_directory(error);
    if (!isUsual) checkFile(entries->path());
  }
}

// Empty if there is none.
std::string readText(const fs::path& path) {
  if (!fs::is_regular_file(statusOf(path))) return {};
  try {
    return fl::filesystem::readFileBytes(path.string(), maximumRulesSize);
  } catch (const fl::filesystem::ReadError& error) {
    fail(path, fmt::format("can't be read: {}", error.what()));
  }
}

std::vector<std::string> readLines(const fs::path& path) {
  std::vector<std::string> lines;
  for (const auto line : std::views::split(readText(path), '\n')) {
    std::string text(line.begin(), line.end());
    if (text.ends_with('\r')) text.pop_back();
    lines.push_back(std::move(text));
  }
  return lines;
}

std::string firstLine(const fs::path& path) {
  const auto lines = readLines(path);
  return lines.empty() ? std::string() : lines.front();
}

// The folder that a `.git` stands for: itself, or the one that it names.
fs::path gitFolderOf(const fs::path& dotGit) {
  checkFile(dotGit);
  if (fs::is_directory(statusOf(dotGit))) return dotGit;
  constexpr std::string_view prefix = "gitdir:";
  const std::string line = firstLine(dotGit);
  if (!line.starts_with(prefix)) fail(dotGit, "names no folder of git; mend or remove it");
  const auto name =
      line.substr(std::min(line.find_first_not_of(" \t", prefix.size()), line.size()));
  const fs::path folder = dotGit.parent_path() / name;
  if (!fs::is_directory(statusOf(folder))) {
    fail(dotGit, fmt::format("names '{}', which is no folder; mend or remove it", name));
  }
  return folder;
}

// The folder with what all work trees of a repository share.
fs::path commonFolderOf(const fs::path& gitFolder) {
  const std::string name = firstLine(gitFolder / "commondir");
  return name.empty() ? gitFolder : gitFolder / name;
}

fs::path valuePath(std::string value, const fs::path& folder) {
  std::erase(value, '"');
  value.erase(std::min(value.find_last_not_of(" \t") + 1, value.size()));
  const char* home = std::getenv("HOME");
  if (value.starts_with("~/") && home != nullptr) return home + value.substr(1);
  return folder / value;
}

// The value of the key in a line of a configuration, which may follow the name of its section;
// empty if there is none.
std::string valueOf(std::string_view line, std::string_view key) {
  const auto isSpace = [](char character) { return character == ' ' || character == '\t'; };
  const auto skipSpace = [&](std::string_view text) {
    return text.substr(std::ranges::find_if_not(text, isSpace) - text.begin());
  };
  if (skipSpace(line).starts_with('['))
    line.remove_prefix(std::min(line.find(']'), line.size() - 1) + 1);
  line = skipSpace(line);
  const auto isSame = [](char one, char other) { return std::tolower(one) == other; };
  if (line.size() < key.size() || !std::ranges::equal(line.substr(0, key.size()), key, isSame))
    return {};
  line = skipSpace(line.substr(key.size()));
  return line.starts_with('=') ? std::string(skipSpace(line.substr(1))) : std::string();
}

// With the files that it includes or names.
void checkConfiguration(const fs::path& path, int depth = 0) {
  checkFile(path);
  if (depth > maximumDepth) return;
  for (const std::string& line : readLines(path)) {
    if (const auto value = valueOf(line, "path"); !value.empty()) {
      checkConfiguration(valuePath(value, path.parent_path()), depth + 1);
    }
    for (const char* key : {"excludesfile", "attributesfile"}) {
      const auto value = valueOf(line, key);
      if (!value.empty()) checkRules(valuePath(value, path.parent_path()));
    }
  }
}

void checkObjectFolder(const fs::path& folder, std::set<std::string>& checked) {
  if (!checked.insert(folder.lexically_normal().string()).second) return;
  checkFilesBelow(folder);
  for (const std::string& line : readLines(folder / "info/alternates")) {
    if (!line.empty() && !line.starts_with('#')) checkObjectFolder(folder / line, checked);
  }
}

// Runs of stars count as one star.
bool isSlow(std::string_view pattern) {
  int folderStars = 0;
  for (const auto part : std::views::split(pattern, '/')) {
    const std::string_view name(part.begin(), part.end());
    if (name == "**" && ++folderStars > maximumFolderStars) return true;
    int stars = 0;
    for (std::size_t at = 0; at < name.size(); ++at) {
      stars += static_cast<int>(name[at] == '*' && !name.substr(0, at).ends_with('*'));
    }
    if (stars > maximumStars) return true;
  }
  return false;
}

}  // namespace

void checkRepositoryFiles(const std::string& folder) {
  const fs::path git = gitFolderOf(fs::path(folder) / ".git");
  for (const char* name : {"HEAD", "index", "commondir", "config.worktree"}) checkFile(git / name);
  const fs::path common = commonFolderOf(git);
  for (const auto& [place, name] : {std::pair(&git, "HEAD"), std::pair(&common, "objects")}) {
    if (!fs::exists(statusOf(*place / name))) {
      fail(git, fmt::format("has no {}, so it is no repository; mend or remove it", name));
    }
  }
  for (const char* name : {"packed-refs", "shallow"}) checkFile(common / name);
  checkConfiguration(common / "config");
  checkConfiguration(git / "config.worktree");
  checkRules((common / "info/attributes").string());
  checkRules((common / "info/exclude").string());
}

void checkObjectFiles(const std::string& folder) {
  const fs::path git = gitFolderOf(fs::path(folder) / ".git");
  const fs::path common = commonFolderOf(git);
  checkFilesBelow(git / "refs");
  checkFilesBelow(common / "refs");
  std::set<std::string> checked;
  checkObjectFolder(common / "objects", checked);
}

void checkRules(const std::string& path) {
  checkFile(path);
  const auto lines = readLines(path);
  for (std::size_t number = 0; number < lines.size(); ++number) {
    if (lines[number].starts_with('#') || !isSlow(lines[number])) continue;
    fail(path, fmt::format("has in line {} a pattern with so many stars that matching it may take "
                           "too long; write it with at most {} in a name",
                           number + 1, maximumStars));
  }
}

}  // namespace soca
