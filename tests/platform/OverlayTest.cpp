#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"

namespace fl::filesystem {
namespace {

// The overlay text of the path; empty for none.
ustring textOver(const std::string& path) {
  const auto text = findOverlay(path);
  EXPECT_EQ(text, findOverlay(i18n::to_ustring(path)));
  return text == nullptr ? ustring() : *text;
}

TEST(Overlay, TheLatestScopeIsReadInAnyOrderOfTheirEnds) {
  EXPECT_FALSE(hasOverlays());
  auto first = std::make_unique<OverlayScope>("/x/A.vlm", u"first");
  auto second = std::make_unique<OverlayScope>("/x/./y/../A.vlm", u"second");
  const OverlayScope other("/x/\xC3\x9C.vlm", u"other");
  EXPECT_EQ(textOver("/x/A.vlm"), u"second");
  EXPECT_EQ(textOver("/x/\xC3\x9C.vlm"), u"other");
  EXPECT_EQ(textOver("/x/B.vlm"), u"");
  first.reset();
  EXPECT_EQ(textOver("/x/A.vlm"), u"second");
  second.reset();
  EXPECT_EQ(findOverlay(std::string("/x/A.vlm")), nullptr);
  EXPECT_TRUE(hasOverlays());
}

}  // namespace
}  // namespace fl::filesystem
