#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "platform/paths/ClassPathItem.h"
#include "platform/paths/Overlay.h"
#include "platform/text/Conversions.h"
#include "tests/platform/TemporaryFolder.h"

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

TEST(Overlay, IsOfItsThreadAndIsTreatedAsAFile) {
  const TemporaryFolder folder;
  PathDispatcher& dispatcher = PathDispatcher::getDispatcher();
  const auto before = dispatcher.classPath();
  dispatcher.setClassPath({folder.path()});
  const OverlayScope scope(folder.path() + "/pkg/A.vlm", u"classdef A\nend\n");
  const auto item = omGetMatchingClassPathItem(dispatcher, u"pkg.A");
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->folder + item->file, u"pkg/A.vlm");
  EXPECT_EQ(omGetMatchingClassPathItem(dispatcher, u"pkg.B"), nullptr);
  std::thread([&] {
    EXPECT_FALSE(hasOverlays());
    EXPECT_EQ(omGetMatchingClassPathItem(dispatcher, u"pkg.A"), nullptr);
    const OverlayScope own(folder.path() + "/pkg/B.vlm", u"b");
    EXPECT_NE(omGetMatchingClassPathItem(dispatcher, u"pkg.B"), nullptr);
  }).join();
  EXPECT_EQ(omGetMatchingClassPathItem(dispatcher, u"pkg.B"), nullptr);
  dispatcher.setClassPath(before);
}

}  // namespace
}  // namespace fl::filesystem
