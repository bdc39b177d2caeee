#include "files/targets/Targets.h"

#include <fmt/core.h>
#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "files/targets/NearestFile.h"
#include "files/targets/NearestName.h"
#include "files/targets/UsageError.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace soca {
namespace {

bool isFolder(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// True for a dangling link too.
bool exists(const std::string& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0;
}

bool isPath(const std::string& argument) {
  return argument.find('/') != std::string::npos || exists(argument);
}

std::string_view folderOf(std::string_view path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

Target makeClassTarget(const std::string& className) {
  Target target;
  target.className = className;
  target.isNamed = true;
  return target;
}

// A path as text for any bytes.
std::string shownName(const std::string& path) {
  return fl::i18n::to_string(fl::decodeFileText(path).text);
}

// The key by which equal targets are found.
std::string keyOf(const Target& target) {
  return target.type == Target::Type::aClass ? target.className : target.path;
}

std::string_view fileNameOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

[[noreturn]] void throwMissing(const std::string& argument) {
  throw UsageError(fmt::format("there is no file or folder '{}'{}", argument,
                               didYouMean(nearestPath(argument))));
}

}  // namespace

Targets::Targets(const ClassRoots* roots, const std::vector<std::string>& arguments)
    : roots_(roots) {
  addArguments(arguments);
}

Targets::Targets(const ClassRoots* roots, const std::vector<std::string>& arguments, WalkType walk,
                 Git* git, OtherFilesType otherFiles)
    : roots_(roots), walk_(walk), git_(git), otherFiles_(otherFiles) {
  addArguments(arguments);
  if (!arguments.empty()) return;
  for (const std::string& root : roots->all()) {
    addNamedFolder(root, false);
    arguments_.emplace_back(FolderWalk(roots, git, walk, root));
  }
  mayRepeat_ = haveNestedFolders();
}

void Targets::addArguments(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) arguments_.push_back(makeArgument(argument));
  for (const Argument& argument : arguments_) {
    const auto* target = std::get_if<Target>(&argument);
    if (target != nullptr) named_.insert(keyOf(*target));
  }
  mayRepeat_ = haveNestedFolders();
}

bool Targets::haveNestedFolders() const {
  std::unordered_set<std::string_view> folders;
  for (const Argument& argument : arguments_) {
    const auto* walk = std::get_if<FolderWalk>(&argument);
    if (walk != nullptr && !folders.insert(walk->folder()).second) return true;
  }
  const auto liesInAnother = [&](std::string_view folder) {
    while (folder != "/") {
      folder = folderOf(folder);
      if (folders.contains(folder)) return true;
    }
    return false;
  };
  return std::ranges::any_of(folders, liesInAnother);
}

std::vector<std::string> Targets::warnings() const {
  std::vector<std::string> warnings;
  for (const Argument& argument : arguments_) {
    const auto* walk = std::get_if<FolderWalk>(&argument);
    if (walk == nullptr) continue;
    for (const std::string& problem : walk->warnings()) {
      auto warning = fmt::format("warning: git's ignore rules do not hold: {}", problem);
      if (std::ranges::find(warnings, warning) == warnings.end()) {
        warnings.push_back(std::move(warning));
      }
    }
  }
  return warnings;
}

Targets::Argument Targets::makeArgument(const std::string& argument) {
  if (argument.empty()) throw UsageError("an argument is empty");
  if (!isPath(argument)) return makeClassTarget(argument);
  const std::string absolute = fl::filesystem::makeAbsoluteLexically(argument);
  // The argument is UTF-8, but the path of the current folder may not be.
  if (fl::decodeFileText(absolute).encoding != fl::EncodingType::utf8) {
    throw UsageError(fmt::format("the path '{}' is not UTF-8", shownName(absolute)));
  }
  const std::string path = roots_->underRoot(absolute);
  // A folder with the name of a class file is in place of a class.
  if (const auto stem = stemOfClassFile(fileNameOf(path))) {
    return makeFileTarget(argument, path, *stem);
  }
  if (!exists(path)) throwMissing(argument);
  if (!isFolder(path)) {
    const std::string reason = "its name ends in neither .vlm nor .p";
    return passOver(path, reason, fmt::format("'{}' is no class file: {}", argument, reason));
  }
  if (git_ == nullptr) {
    throw UsageError(fmt::format("'{}' is a folder; name a class or its file", argument));
  }
  if (!roots_->packageOf(path)) {
    throw UsageError(
        fmt::format("the folder '{}' is on no root of the class path: {}; add its root with "
                    "--path{}",
                    argument, roots_->listing(), suggestRoot(argument)));
  }
  addNamedFolder(path, false);
  return FolderWalk(roots_, git_, walk_, path);
}

void Targets::addNamedFolder(std::string folder, bool isOfFile) {
  if (!namedFolders_.empty() && namedFolders_.back().path == folder) return;
  namedFolders_.push_back({std::move(folder), isOfFile});
}

Target Targets::makeFileTarget(const std::string& argument, const std::string& path,
                               std::string_view stem) {
  const auto package = roots_->packageOf(folderOf(path));
  if (!package || !isIdentifierName(stem)) {
    if (!exists(path)) throwMissing(argument);
    const std::string reason =
        package ? "its name is no class name"
                : fmt::format("it is on no root of the class path: {}; add its root with --path{}",
                              roots_->listing(), suggestRoot(argument));
    return passOver(path, reason,
                    fmt::format("the file '{}' has no class name on any root of the class path: {}",
                                argument, roots_->listing()));
  }
  addNamedFolder(std::string(folderOf(path)), true);
  FoundFile file;
  file.path = path;
  file.className = package->prefix + std::string(stem);
  file.root = package->root;
  Target target = makeTarget(std::move(file));
  target.isNamed = true;
  target.mayHoldNoClass = otherFiles_ == OtherFilesType::arePassedOver;
  return target;
}

Target Targets::passOver(const std::string& path, std::string reason,
                         const std::string& error) const {
  if (otherFiles_ == OtherFilesType::areErrors) throw UsageError(error);
  Target target;
  target.type = Target::Type::passedOver;
  target.className = path;
  target.path = path;
  target.isNamed = true;
  target.reason = std::move(reason);
  return target;
}

bool Targets::haveFolders() const {
  return std::ranges::any_of(arguments_, [](const Argument& argument) {
    return std::holds_alternative<FolderWalk>(argument);
  });
}

bool Targets::isOneClass() const {
  return arguments_.size() == 1 && std::holds_alternative<Target>(arguments_.front());
}

std::optional<Target> Targets::next() {
  while (current_ < arguments_.size()) {
    auto target = nextOf(arguments_[current_]);
    if (!target) {
      ++current_;
      continue;
    }
    if (isNew(*target)) return target;
  }
  return std::nullopt;
}

std::optional<Target> Targets::nextOf(Argument& argument) {
  if (auto* walk = std::get_if<FolderWalk>(&argument)) {
    auto file = walk->next();
    if (!file) return std::nullopt;
    return makeTarget(std::move(*file));
  }
  auto& target = std::get<Target>(argument);
  if (target.className.empty()) return std::nullopt;
  return std::exchange(target, Target());
}

Target Targets::makeTarget(FoundFile file) const {
  Target target;
  target.path = std::move(file.path);
  switch (file.type) {
    case FoundFile::Type::noClass:
      target.type = Target::Type::noClass;
      return target;
    case FoundFile::Type::otherName:
      target.type = Target::Type::otherName;
      return target;
    case FoundFile::Type::misnamed:
      target.type = Target::Type::misnamed;
      target.className = shownName(target.path);
      return target;
    case FoundFile::Type::unreadable:
      target.type = Target::Type::unreadable;
      target.className = shownName(target.path);
      target.reason = std::move(file.reason);
      return target;
    case FoundFile::Type::classFile:
      break;
  }
  target.className = std::move(file.className);
  target.isNamed = named_.contains(target.className);
  try {
    if (auto hiddenBy = roots_->fileInFrontOf(file.root, target.className)) {
      target.type = Target::Type::hidden;
      target.hiddenBy = std::move(*hiddenBy);
      target.isNamed = false;
    }
  } catch (const fl::filesystem::ReadError& error) {
    target.type = Target::Type::undecided;
    target.path = error.path();
    target.reason = error.reason();
  }
  return target;
}

bool Targets::isNew(const Target& target) {
  const std::string key = keyOf(target);
  return (!mayRepeat_ && !named_.contains(key)) || seen_.insert(key).second;
}

}  // namespace soca
