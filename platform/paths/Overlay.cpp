#include "platform/paths/Overlay.h"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/paths/NativePath.h"
#include "platform/text/Conversions.h"

namespace fl::filesystem {
namespace {

using Text = std::shared_ptr<const ustring>;

// The overlay texts of each path, the latest last; no entry is empty.
thread_local std::unordered_map<std::string, std::vector<Text>> overlays;

// Whether the path is `.../a/b/C` with an extension, for the class `a.b.C`.
bool isPathOfClass(std::string_view path, std::string_view className) {
  path = path.substr(0, path.rfind('.'));
  if (path.size() <= className.size()) return false;
  const std::string_view end = path.substr(path.size() - className.size());
  return path[path.size() - className.size() - 1] == '/' &&
         std::ranges::equal(end, className, [](char c, char ofName) {
           return c == (ofName == '.' ? '/' : ofName);
         });
}

}  // namespace

OverlayScope::OverlayScope(const std::string& path, std::shared_ptr<const ustring> text)
    : path_(makeAbsoluteLexically(path)), text_(std::move(text)) {
  overlays[path_].push_back(text_);
}

OverlayScope::OverlayScope(const std::string& path, ustring text)
    : OverlayScope(path, std::make_shared<const ustring>(std::move(text))) {}

OverlayScope::~OverlayScope() {
  const auto entry = overlays.find(path_);
  std::vector<Text>& texts = entry->second;
  texts.erase(std::find(texts.rbegin(), texts.rend(), text_).base() - 1);
  if (texts.empty()) overlays.erase(entry);
}

std::shared_ptr<const ustring> findOverlay(const std::string& path) {
  if (overlays.empty()) return nullptr;
  const auto entry = overlays.find(path);
  return entry == overlays.end() ? nullptr : entry->second.back();
}

std::shared_ptr<const ustring> findOverlay(const ustring& path) {
  return overlays.empty() ? nullptr : findOverlay(i18n::to_string(path));
}

bool hasOverlays() { return !overlays.empty(); }

std::size_t overlayCount() { return overlays.size(); }

bool hasOverlayOfClass(std::string_view className) {
  return std::ranges::any_of(
      overlays, [&](const auto& overlay) { return isPathOfClass(overlay.first, className); });
}

}  // namespace fl::filesystem
