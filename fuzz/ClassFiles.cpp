#include "fuzz/ClassFiles.h"

#include <algorithm>

#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace soca::fuzz {
namespace {

constexpr char separator = '\x1E';
constexpr const char* root = "/no-such-folder";

}  // namespace

std::string ClassFilesScope::pathOf(const std::string& className) {
  std::string path = std::string(root) + '/' + className + ".vlm";
  std::replace(path.begin(), path.end() - 4, '.', '/');
  return path;
}

ClassFilesScope::ClassFilesScope(const std::vector<ClassFile>& files) {
  PathDispatcher& dispatcher = PathDispatcher::getDispatcher();
  if (dispatcher.classPath() != std::vector<std::string>{root}) dispatcher.setClassPath({root});
  for (const ClassFile& file : files) replace(file.className, file.text);
}

void ClassFilesScope::replace(const std::string& className, const fl::ustring& text) {
  overlays_.push_back(std::make_unique<fl::filesystem::OverlayScope>(pathOf(className), text));
}

std::vector<ClassFile> readClassFiles(std::string_view bytes) {
  if (!bytes.starts_with(separator)) return {{"C", fl::decodeFileText(bytes).text}};
  std::vector<ClassFile> files;
  while (!bytes.empty()) {
    bytes.remove_prefix(1);
    const std::string_view entry = bytes.substr(0, bytes.find(separator));
    bytes.remove_prefix(entry.size());
    const std::size_t nameEnd = std::min(entry.find('\n'), entry.size());
    files.push_back({std::string(entry.substr(0, nameEnd)),
                     fl::decodeFileText(entry.substr(std::min(nameEnd + 1, entry.size()))).text});
  }
  return files;
}

std::string writeClassFiles(const std::vector<ClassFile>& files) {
  if (files.size() == 1 && files.front().className == "C") {
    return fl::i18n::to_string(files.front().text);
  }
  std::string bytes;
  for (const ClassFile& file : files) {
    bytes += separator + file.className + '\n' + fl::i18n::to_string(file.text);
  }
  return bytes;
}

}  // namespace soca::fuzz
