#include "platform/runtime/ClassPlace.h"

#include <utility>

#include "platform/paths/ClassPathItem.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/Conversions.h"

namespace sotarn {

namespace {

std::string nativePath(const ClassPathItem& item, const fl::ustring& file) {
  const foundation::storage::vfs::CanonicalAbsoluteIRI location(item.base, item.folder + file);
  return fl::i18n::to_string(
      fl::filesystem::detail::make_native_form(location.getPath(), /*decode=*/true));
}

ClassPlace placeOfPFile(const ClassPathItem& item) {
  const fl::ustring source = item.file.substr(0, item.file.size() - 1) + u"vlm";
  std::string path = nativePath(item, source);
  const bool isThere =
      fl::filesystem::findOverlay(path) != nullptr || fl::filesystem::stampInView(path);
  return {isThere ? std::move(path) : std::string(), true};
}

}  // namespace

std::optional<ClassPlace> findClassPlace(std::string_view name) {
  const auto item =
      omGetMatchingClassPathItem(PathDispatcher::getDispatcher(), fl::i18n::to_ustring(name));
  if (item == nullptr) return std::nullopt;
  if (item->file.ends_with(u".p")) return placeOfPFile(*item);
  return ClassPlace{nativePath(*item, item->file), false};
}

}  // namespace sotarn
