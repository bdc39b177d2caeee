// Texts that are read in place of files: the unsaved text of an editor, or the outcome of an update
// that was not written yet.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace fl::filesystem {

// While it lives, `text` lies over the native path `path` for the thread that made it, whether or
// not a file is there. Of several texts over one path the youngest counts. To be destroyed on its
// own thread.
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

// The text that lies over the path on this thread; null for none. The path is compared as it
// stands, so it should be absolute.
std::shared_ptr<const ustring> findOverlay(const std::string& path);
std::shared_ptr<const ustring> findOverlay(const ustring& path);

// Whether any text lies over any path on this thread.
bool hasOverlays();

// Over how many paths texts lie on this thread.
std::size_t overlayCount();

// Whether a text lies over a path on this thread that may be the file of the class under some root:
// one with the class's name in its last segments, in front of an extension. `className` is dotted
// and in UTF-8.
bool hasOverlayOfClass(std::string_view className);

}  // namespace fl::filesystem
