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

// The texts over each path, the youngest last; no entry is empty.
thread_local std::unordered_map<std::string, std::vector<Text>> overlays;

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

}  // namespace fl::filesystem
