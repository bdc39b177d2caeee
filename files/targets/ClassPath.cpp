#include "files/targets/ClassPath.h"

#include <fmt/core.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "files/targets/NearestFile.h"
#include "files/targets/NearestName.h"
#include "files/targets/UsageError.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassTable.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace soca {
namespace {

constexpr std::uint64_t largestClassTable = std::uint64_t{64} << 20U;

void checkRoot(const std::string& root) {
  struct stat status = {};
  if (root.empty()) throw UsageError("--path takes the name of a folder");
  if (::stat(root.c_str(), &status) != 0) {
    const std::string reason = std::strerror(errno);
    throw UsageError(fmt::format("the root '{}' can't be used: {}{}", root, reason,
                                 didYouMean(nearestFolder(root))));
  }
  if (!S_ISDIR(status.st_mode)) throw UsageError(fmt::format("the root '{}' is no folder", root));
}

// The folder as an absolute path. The path of the current folder may not be UTF-8.
std::string absoluteRoot(const std::string& root) {
  std::string path = fl::filesystem::makeAbsoluteLexically(root);
  if (!path.starts_with('/')) throw UsageError("the current folder does not exist any more");
  const fl::DecodedText decoded = fl::decodeFileText(path);
  if (decoded.encoding == fl::EncodingType::utf8) return path;
  throw UsageError(
      fmt::format("the path of the root '{}' is not UTF-8", fl::i18n::to_string(decoded.text)));
}

std::shared_ptr<const sotarn::ClassTable> readClassTable(const std::string& file) {
  try {
    const auto bytes = fl::filesystem::readFileBytes(file, largestClassTable);
    return std::make_shared<const sotarn::ClassTable>(sotarn::parseClassTable(bytes));
  } catch (const fl::filesystem::ReadError& error) {
    throw UsageError(fmt::format("the class table can't be read: {}{}", error.what(),
                                 didYouMean(nearestPath(file))));
  } catch (const sotarn::ClassTableError& error) {
    throw UsageError(fmt::format("the class table '{}' is wrong: {}", file, error.what()));
  }
}

}  // namespace

ClassRoots setClassPath(const std::vector<std::string>& rootFolders,
                        const std::string& classTable) {
  std::vector<std::string> roots;
  for (const std::string& root : rootFolders) {
    checkRoot(root);
    roots.push_back(absoluteRoot(root));
  }
  if (roots.empty()) roots.push_back(absoluteRoot({}));
  if (!classTable.empty()) sotarn::setClassTable(readClassTable(classTable));
  PathDispatcher::getDispatcher().setClassPath(roots);
  return ClassRoots(std::move(roots));
}

}  // namespace soca
