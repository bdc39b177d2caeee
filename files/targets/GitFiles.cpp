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

// The folders that were entered, by device and number, since links may lead to any of them.
using EnteredFolders = std::set<std::pair<dev_t, ino_t>>;

void checkFilesBelow(const fs::path& folder, EnteredFolders& entered) {
  checkFile(folder);
  struct stat status = {};
  if (::stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return;
  if (!entered.insert({status.st_dev, status.st_ino}).second) return;
  std::error_code error;
  fs::directory_iterator entries(folder, error);
  for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
    std::error_code unknown;
    if (entries->is_regular_file(unknown)) continue;
    checkFilesBelow(entries->path(), entered);
  }
  if (error) fail(folder, "can't be read: " + error.message());
}

void checkFilesBelow(const fs::path& folder) {
  EnteredFolders entered;
  checkFilesBelow(folder, entered);
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

fs::path valuePath(const std::string& value, const fs::path& folder) {
  const char* home = std::getenv("HOME");
  if (value.starts_with("~/") && home != nullptr) return home + value.substr(1);
  return folder / value;
}

std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](unsigned char letter) {
    return static_cast<char>(std::tolower(letter));
  });
  return result;
}

std::string withoutSpaceAtEnd(std::string text) {
  text.erase(std::min(text.find_last_not_of(" \t\r") + 1, text.size()));
  return text;
}

// Reads the settings of a configuration one by one.
class ConfigurationReader {
 public:
  explicit ConfigurationReader(std::string text) : text_(std::move(text)) {}

  // False at the end.
  bool next() {
    while (at_ < text_.size()) {
      const char first = text_[at_];
      if (first == '[') {
        readSection();
      } else if (first == '#' || first == ';') {
        at_ = std::min(text_.find('\n', at_), text_.size());
      } else if (std::isspace(static_cast<unsigned char>(first)) != 0) {
        ++at_;
      } else {
        readSetting();
        return true;
      }
    }
    return false;
  }

  bool isInclude() const { return section_.starts_with("include") && key_ == "path"; }
  bool namesRules() const {
    return section_ == "core" && (key_ == "excludesfile" || key_ == "attributesfile");
  }
  const std::string& value() const { return value_; }

 private:
  void readSection() {
    const std::size_t start = ++at_;
    bool isQuoted = false;
    for (; at_ < text_.size() && text_[at_] != '\n'; ++at_) {
      if (text_[at_] == '"') isQuoted = !isQuoted;
      if (text_[at_] == ']' && !isQuoted) break;
    }
    const std::string_view header = std::string_view(text_).substr(start, at_ - start);
    section_ = lowerCase(header.substr(0, header.find_first_of(" \t\".")));
    if (at_ < text_.size()) ++at_;
  }

  void readSetting() {
    const std::size_t end = std::min(text_.find_first_of("=\n", at_), text_.size());
    key_ = lowerCase(withoutSpaceAtEnd(text_.substr(at_, end - at_)));
    value_.clear();
    at_ = end;
    if (at_ < text_.size() && text_[at_] == '=') {
      at_ = std::min(text_.find_first_not_of(" \t", at_ + 1), text_.size());
      readValue();
    }
  }

  // Up to the end of the line or a comment.
  void readValue() {
    bool isQuoted = false;
    for (; at_ < text_.size() && text_[at_] != '\n'; ++at_) {
      const char letter = text_[at_];
      if (letter == '"') {
        isQuoted = !isQuoted;
      } else if (letter == '\\') {
        readEscape();
      } else if (!isQuoted && (letter == '#' || letter == ';')) {
        at_ = std::min(text_.find('\n', at_), text_.size());
        break;
      } else {
        value_ += letter;
      }
    }
    value_ = withoutSpaceAtEnd(std::move(value_));
  }

  // A backslash joins lines, and makes a letter an ordinary one.
  void readEscape() {
    if (text_.compare(at_ + 1, 1, "\r") == 0) ++at_;
    ++at_;
    if (at_ < text_.size() && text_[at_] != '\n') value_ += text_[at_];
  }

  std::string text_;
  std::size_t at_ = 0;
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
  ConfigurationReader reader(readText(path));
  while (reader.next()) {
    const fs::path named = valuePath(reader.value(), path.parent_path());
    if (reader.isInclude()) keepSlowest(slowest, checkConfiguration(named, depth + 1));
    if (reader.namesRules()) keepSlowest(slowest, checkRules(named));
  }
  return slowest;
}

// The reference, and those that it stands for.
void checkReference(const fs::path& git, const fs::path& common, const std::string& name) {
  constexpr std::string_view prefix = "ref:";
  std::string target = name;
  for (int depth = 0; depth < maximumDepth; ++depth) {
    checkFile(common / target);
    checkFile(git / target);
    const std::string line = withoutSpaceAtEnd(firstLine(git / target));
    if (!line.starts_with(prefix)) return;
    target = line.substr(std::min(line.find_first_not_of(" \t", prefix.size()), line.size()));
  }
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
  checkReference(git, common, "HEAD");
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
