#include "files/targets/GitFiles.h"

#include <fmt/core.h>
#include <sys/stat.h>

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
// For one path some tens of milliseconds.
constexpr double maximumWays = 1e7;
constexpr std::ptrdiff_t maximumFolderStars = 4;
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

bool isNullDevice(const fs::path& path) {
  struct stat status = {};
  struct stat null = {};
  return ::stat(path.c_str(), &status) == 0 && ::stat("/dev/null", &null) == 0 &&
         S_ISCHR(status.st_mode) && status.st_rdev == null.st_rdev;
}

// What is neither a file nor a folder may be a pipe. The null device is usual for "no file".
void checkFile(const fs::path& path) {
  const auto status = statusOf(path);
  const bool isUsual =
      !fs::exists(status) || fs::is_regular_file(status) || fs::is_directory(status);
  if (!isUsual && !isNullDevice(path)) {
    fail(path, "is neither a file nor a folder, as git has them; put a file in its place");
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

std::string_view withoutSpace(std::string_view text) {
  const std::size_t start = std::min(text.find_first_not_of(" \t"), text.size());
  return text.substr(start, text.find_last_not_of(" \t") + 1 - start);
}

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](unsigned char letter) {
    return static_cast<char>(std::tolower(letter));
  });
  return result;
}

// Reads a configuration line by line.
class ConfigurationReader {
 public:
  // Whether the line has a key; the name of a section may stand before it.
  bool read(std::string_view line) {
    line = withoutSpace(line);
    if (line.starts_with('[')) {
      const std::size_t end = std::min(line.find(']'), line.size() - 1);
      section_ = lowerCase(line.substr(1, std::min(line.find_first_of(" \t\"]"), end) - 1));
      line = withoutSpace(line.substr(end + 1));
    }
    const std::size_t sign = line.find('=');
    if (sign == std::string_view::npos) return false;
    key_ = lowerCase(withoutSpace(line.substr(0, sign)));
    value_ = withoutSpace(line.substr(sign + 1));
    return !value_.empty();
  }

  bool isInclude() const { return section_.starts_with("include") && key_ == "path"; }
  bool namesRules() const {
    return section_ == "core" && (key_ == "excludesfile" || key_ == "attributesfile");
  }
  const std::string& value() const { return value_; }

 private:
  std::string section_;
  std::string key_;
  std::string value_;
};

void keepSlowest(SlowestPattern& slowest, SlowestPattern other) {
  if (other.stars > slowest.stars) slowest = std::move(other);
}

// With the files that it includes or names.
SlowestPattern checkConfiguration(const fs::path& path, int depth = 0) {
  SlowestPattern slowest;
  checkFile(path);
  if (depth > maximumDepth) return slowest;
  ConfigurationReader reader;
  for (const std::string& line : readLines(path)) {
    if (!reader.read(line)) continue;
    const fs::path named = valuePath(reader.value(), path.parent_path());
    if (reader.isInclude()) keepSlowest(slowest, checkConfiguration(named, depth + 1));
    if (reader.namesRules()) keepSlowest(slowest, checkRules(named));
  }
  return slowest;
}

void checkObjectFolder(const fs::path& folder, std::set<std::string>& checked) {
  if (!checked.insert(folder.lexically_normal().string()).second) return;
  checkFilesBelow(folder);
  for (const std::string& line : readLines(folder / "info/alternates")) {
    if (!line.empty() && !line.starts_with('#')) checkObjectFolder(folder / line, checked);
  }
}

std::size_t starsOf(std::string_view name) {
  std::size_t stars = 0;
  for (std::size_t at = 0; at < name.size(); ++at) {
    if (name[at] == '*' && (at == 0 || name[at - 1] != '*')) ++stars;
  }
  return stars;
}

// The number of ways to choose the ends of so many stars in so many characters, or more.
double waysToMatch(std::size_t stars, std::size_t length) {
  double ways = 1;
  for (std::size_t i = 0; i < std::min(stars, length / 2); ++i) {
    ways *= static_cast<double>(length - i) / static_cast<double>(i + 1);
  }
  return ways;
}

}  // namespace

SlowestPattern checkRepositoryFiles(const std::string& folder) {
  const fs::path git = gitFolderOf(fs::path(folder) / ".git");
  for (const char* name : {"HEAD", "index", "commondir", "config.worktree"}) checkFile(git / name);
  const fs::path common = commonFolderOf(git);
  for (const auto& [place, name] : {std::pair(&git, "HEAD"), std::pair(&common, "objects")}) {
    if (!fs::exists(statusOf(*place / name))) {
      fail(git, fmt::format("has no {}, so it is no repository; mend or remove it", name));
    }
  }
  for (const char* name : {"packed-refs", "shallow"}) checkFile(common / name);
  SlowestPattern slowest = checkConfiguration(common / "config");
  keepSlowest(slowest, checkConfiguration(git / "config.worktree"));
  keepSlowest(slowest, checkRules((common / "info/attributes").string()));
  keepSlowest(slowest, checkRules((common / "info/exclude").string()));
  return slowest;
}

void checkObjectFiles(const std::string& folder) {
  const fs::path git = gitFolderOf(fs::path(folder) / ".git");
  const fs::path common = commonFolderOf(git);
  checkFilesBelow(git / "refs");
  checkFilesBelow(common / "refs");
  std::set<std::string> checked;
  checkObjectFolder(common / "objects", checked);
}

SlowestPattern checkRules(const std::string& path) {
  checkFile(path);
  SlowestPattern slowest;
  const auto lines = readLines(path);
  for (std::size_t number = 0; number < lines.size(); ++number) {
    const std::string& line = lines[number];
    if (line.starts_with('#') || line.find('*') == std::string::npos) continue;
    const auto place = fmt::format("line {} of '{}'", number + 1, path);
    std::ptrdiff_t folderStars = 0;
    for (const auto part : std::views::split(line, '/')) {
      const std::string_view name(part.begin(), part.end());
      folderStars += static_cast<std::ptrdiff_t>(name == "**");
      keepSlowest(slowest, {starsOf(name), place});
    }
    if (folderStars <= maximumFolderStars) continue;
    throw GitError(fmt::format("{} has `**` more than {} times, which may take too long", place,
                               maximumFolderStars));
  }
  return slowest;
}

void checkMatching(const SlowestPattern& pattern, const std::string& path) {
  std::size_t longest = 0;
  for (const auto name : std::views::split(path, '/')) {
    longest = std::max(longest, static_cast<std::size_t>(std::ranges::distance(name)));
  }
  if (waysToMatch(pattern.stars, longest) <= maximumWays) return;
  throw GitError(fmt::format("{} has a pattern of {} stars, which may take too long to match '{}'",
                             pattern.place, pattern.stars, path));
}

}  // namespace soca
