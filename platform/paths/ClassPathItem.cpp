#include "platform/paths/ClassPathItem.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"
#include "platform/paths/ViewMemory.h"
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

// Whether there is a file, a folder or an overlay text at the path. Throws ReadError if that is not
// known.
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
  const auto isThere = [&](std::string_view extension) {
    path.resize(stem);
    return exists(path += extension);
  };
  try {
    if (isThere(".p")) return ".p";
  } catch (const fl::filesystem::ReadError&) {
    // Mostly nothing of the folder can be read, and then the failure should name the source file.
    isThere(".vlm");
    throw;
  }
  return isThere(".vlm") ? ".vlm" : std::string_view();
}

using Roots = std::vector<PathDispatcher::Root>;

// `nativeName` is the class's name in UTF-8.
std::shared_ptr<ClassPathItem> findItem(const Roots& roots, const fl::ustring& className,
                                        const std::string& nativeName) {
  if (!isClassName(className)) return nullptr;
  fl::ustring location = className;
  std::replace(location.begin(), location.end(), u'.', u'/');
  std::string nativeLocation = nativeName;
  std::replace(nativeLocation.begin(), nativeLocation.end(), '.', '/');
  for (const PathDispatcher::Root& root : roots) {
    const std::string_view extension = findExtension(root.path, nativeLocation);
    if (extension.empty()) continue;
    const std::size_t nameStart = location.rfind(u'/') + 1;  // 0 for a class in no package
    return std::make_shared<ClassPathItem>(
        ClassPathItem{root.iri, location.substr(0, nameStart),
                      location.substr(nameStart) + fl::i18n::to_ustring(extension)});
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<ClassPathItem> omGetMatchingClassPathItem(const PathDispatcher& dispatcher,
                                                          const fl::ustring& className) {
  struct Known {
    const Roots* roots = nullptr;
    std::shared_ptr<ClassPathItem> item;
  };
  // Under a view the thread returns the same item every time; items are never modified.
  thread_local fl::filesystem::ViewMemory<Known, 256> memory;
  const Roots& roots = dispatcher.roots();
  const std::string nativeName = fl::i18n::to_string(className);
  if (fl::filesystem::hasOverlayOfClass(nativeName)) return findItem(roots, className, nativeName);
  const Known* known = memory.find(nativeName);
  if (known != nullptr && known->roots == &roots) return known->item;
  auto item = findItem(roots, className, nativeName);
  memory.keep(nativeName, {&roots, item});
  return item;
}
