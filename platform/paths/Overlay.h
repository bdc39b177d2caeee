// Overlay texts, which are read in place of files: the unsaved text of an editor, or the result of
// an update that is not yet written.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace fl::filesystem {

// During its life, `text` is the overlay text of the native path `path` for the thread that made
// it, whether or not there is a file. Of several texts of one path the latest is read. To be
// destroyed on its own thread.
class OverlayScope {
 public:
  // The path is in UTF-8 and is made absolute without following links.
  OverlayScope(const std::string& path, std::shared_ptr<const ustring> text);
  OverlayScope(const std::string& path, ustring text);
  ~OverlayScope();
  OverlayScope(const OverlayScope&) = delete;
  OverlayScope& operator=(const OverlayScope&) = delete;

 private:
  std::string path_;
  std::shared_ptr<const ustring> text_;
};

// The overlay text of the path on this thread; null for none. The path is compared as a string, so
// it should be absolute.
std::shared_ptr<const ustring> findOverlay(const std::string& path);
std::shared_ptr<const ustring> findOverlay(const ustring& path);

// Whether any path has an overlay text on this thread.
bool hasOverlays();

// The number of paths with an overlay text on this thread.
std::size_t overlayCount();

// Whether this thread has an overlay text for a path that may be the file of the class under some
// root: one with the class's name as its last segments, before an extension. `className` is dotted
// and in UTF-8.
bool hasOverlayOfClass(std::string_view className);

}  // namespace fl::filesystem
