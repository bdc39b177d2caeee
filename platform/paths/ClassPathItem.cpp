#include "platform/paths/ClassPathItem.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/Conversions.h"
#include "platform/text/Letters.h"

namespace {

bool isClassName(fl::ustring_view name) {
  while (true) {
    const std::size_t point = name.find(u'.');
    if (!fl::isIdentifier(name.substr(0, point))) return false;
    if (point == fl::ustring_view::npos) return true;
    name.remove_prefix(point + 1);
  }
}

// Whether a file or a folder is at the path, or a text lies over it.
bool exists(const std::string& path) {
  return fl::filesystem::findOverlay(path) != nullptr || fl::filesystem::stampInView(path);
}

// The extension of the class's file under the root, with its point; empty if there is none.
// `location` is the class's path below a root, without an extension.
std::string_view findExtension(const std::string& root, const std::string& location) {
  std::string path;
  path.reserve(root.size() + location.size() + 8);
  path = root;
  if (path.back() != '/') path += '/';
  path += location;
  const std::size_t stem = path.size();
  for (const std::string_view extension : {".p", ".vlm"}) {
    path.resize(stem);
    path += extension;
    if (exists(path)) return extension;
  }
  return {};
}

}  // namespace

std::shared_ptr<ClassPathItem> omGetMatchingClassPathItem(const PathDispatcher& dispatcher,
                                                          const fl::ustring& className) {
  if (!isClassName(className)) return nullptr;
  fl::ustring location = className;
  std::replace(location.begin(), location.end(), u'.', u'/');
  const std::string nativeLocation = fl::i18n::to_string(location);
  for (const PathDispatcher::Root& root : dispatcher.roots()) {
    const std::string_view extension = findExtension(root.path, nativeLocation);
    if (extension.empty()) continue;
    const std::size_t nameStart = location.rfind(u'/') + 1;  // 0 for a class in no package
    return std::make_shared<ClassPathItem>(
        ClassPathItem{root.iri, location.substr(0, nameStart),
                      location.substr(nameStart) + fl::i18n::to_ustring(extension)});
  }
  return nullptr;
}
