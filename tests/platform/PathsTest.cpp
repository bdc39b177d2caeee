#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/paths/ClassPathItem.h"
#include "platform/paths/Iri.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "tests/platform/TemporaryFolder.h"

namespace fl::filesystem {
namespace {

using foundation::storage::vfs::AbsoluteIRI;
using foundation::storage::vfs::CanonicalAbsoluteIRI;

// The native path of a class, from its class-path item; empty for no item.
std::string fileOf(const ustring& className) {
  const auto item = omGetMatchingClassPathItem(PathDispatcher::getDispatcher(), className);
  if (item == nullptr) return "";
  const CanonicalAbsoluteIRI iri(item->base, item->folder + item->file);
  return i18n::to_string(detail::make_native_form(iri.getPath(), true));
}

// Restores the class path for later tests.
class Paths : public testing::Test {
 protected:
  void TearDown() override { dispatcher.setClassPath(before); }

  PathDispatcher& dispatcher = PathDispatcher::getDispatcher();
  const std::vector<std::string> before = dispatcher.classPath();
  const TemporaryFolder folder;
};

TEST_F(Paths, TheClassPathIsTheCurrentFolderUntilItIsSet) {
  EXPECT_EQ(dispatcher.classPath(),
            std::vector<std::string>{std::filesystem::current_path().string()});
  const std::vector<std::string>& earlier = dispatcher.classPath();
  dispatcher.setClassPath({"/a/./b//c/", "rel/../x", "/", ""});
  const std::string current = std::filesystem::current_path().string();
  EXPECT_EQ(dispatcher.classPath(),
            (std::vector<std::string>{"/a/b/c", current + "/x", "/", current}));
  EXPECT_EQ(earlier, std::vector<std::string>{current});
}

TEST_F(Paths, TheFirstRootAndItsPFileHavePrecedence) {
  folder.write("one/pkg/Both.p");
  folder.write("one/pkg/Both.vlm");
  folder.write("one/Plain.vlm");
  folder.write("one/Other.P");
  folder.write("two/pkg/sub/Deep.vlm");
  folder.write("two/Plain.p");
  folder.write("two/Folder.vlm/inside");
  folder.write(
      "two/\xC3\x9C"
      "ber.vlm");
  const std::string one = folder.path() + "/one";
  const std::string two = folder.path() + "/two";
  std::filesystem::create_symlink("Plain.vlm", one + "/Link.vlm");
  std::filesystem::create_symlink("nowhere", one + "/Dangling.vlm");
  dispatcher.setClassPath({folder.path() + "/missing", one, two});
  const struct {
    const char* shows;
    ustring name;
    std::string file;
  } cases[] = {
      {"the p-file before the source", u"pkg.Both", one + "/pkg/Both.p"},
      {"the first root before a p-file in a later one", u"Plain", one + "/Plain.vlm"},
      {"a later root", u"pkg.sub.Deep", two + "/pkg/sub/Deep.vlm"},
      {"a folder of that name counts", u"Folder", two + "/Folder.vlm"},
      {"a name beyond ASCII", u"\u00DCber",
       two + "/\xC3\x9C"
             "ber.vlm"},
      {"a link keeps its name", u"Link", one + "/Link.vlm"},
      {"a dangling link", u"Dangling", ""},
      {"case matters in names", u"plain", ""},
      {"case matters in extensions", u"Other", ""},
      {"no class", u"pkg", ""},
      {"no such class", u"pkg.Missing", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(fileOf(c.name), c.file) << c.shows;
  dispatcher.setClassPath({two, one});
  EXPECT_EQ(fileOf(u"Plain"), two + "/Plain.p");
}

TEST_F(Paths, NamesThatAreNoClassNamesNeverReachTheFileSystem) {
  folder.write("a/b.vlm");
  folder.write("root/1.vlm");
  folder.write("root/_x.vlm");
  folder.write("root/.vlm");
  dispatcher.setClassPath({folder.path() + "/root"});
  for (const char16_t* name : {u"", u"..a.b", u"../a/b", u"a/b", u"/etc/passwd", u"1", u"_x", u".",
                               u"a.", u".a", u"a..b", u"a b", u"a%2Fb"}) {
    EXPECT_EQ(fileOf(name), "") << i18n::to_string(name);
  }
}

TEST_F(Paths, RootsMayHaveAnyCharacters) {
  for (const char* name : {"100%", "a%20b", "with space", "a#b?c", "caf\xC3\xA9",
                           "[x]^{y}|\\z\"<>`", "tab\there", "\xF0\x9F\x98\x80"}) {
    const std::string file = folder.write(std::string(name) + "/pkg/A.vlm");
    dispatcher.setClassPath({folder.path() + "/" + name});
    EXPECT_EQ(fileOf(u"pkg.A"), file);
  }
}

TEST_F(Paths, LookupsWorkWhileTheClassPathIsSet) {
  const std::string one = folder.write("one/A.vlm");
  const std::string two = folder.write("two/A.vlm");
  dispatcher.setClassPath({folder.path() + "/one"});
  std::atomic<bool> isDone = false;
  std::thread setter([&] {
    for (int i = 0; i < 200; ++i) {
      dispatcher.setClassPath({folder.path() + (i % 2 == 0 ? "/two" : "/one")});
    }
    isDone = true;
  });
  do {
    const std::string file = fileOf(u"A");
    EXPECT_TRUE(file == one || file == two) << file;
  } while (!isDone);
  setter.join();
}

TEST(Iri, PathsAreEscapedAndCanonical) {
  const struct {
    const char* base;
    ustring relative;
    ustring path;
  } cases[] = {
      {"/a/b", u"c/d/E.vlm", u"/a/b/c/d/E.vlm"},
      {"/", u"E.vlm", u"/E.vlm"},
      {"/a b/100%", u"E.vlm", u"/a%20b/100%25/E.vlm"},
      {"/caf\xC3\xA9", u"\u00DC.vlm", u"/caf\u00E9/\u00DC.vlm"},
      {"/a/b", u"./c/../../d//e", u"/a/d/e"},
      {"/a", u"../../../b", u"/b"},
  };
  for (const auto& c : cases) {
    const AbsoluteIRI base = AbsoluteIRI::fromNativePath(c.base);
    EXPECT_EQ(CanonicalAbsoluteIRI(base, c.relative).getPath(), c.path);
  }
}

TEST(NativePath, DecodesAndSplitsExtensions) {
  EXPECT_EQ(detail::make_native_form(u"/a%20b/%C3%A9/\u00FC", true), u"/a b/\u00E9/\u00FC");
  EXPECT_EQ(detail::make_native_form(u"/a%2fb%25zz%4", true), u"/a/b%zz%4");
  EXPECT_EQ(detail::make_native_form(u"/a%41", true), u"/aA");
  EXPECT_EQ(detail::make_native_form(u"/a%20b", false), u"/a%20b");
  const struct {
    ustring path;
    ustring extension;
    ustring replaced;
  } cases[] = {
      {u"/x/A.p", u"p", u"/x/A.vlm"},  {u"/x/A.b.P", u"P", u"/x/A.b.vlm"},
      {u"/x.y/A", u"", u"/x.y/A.vlm"}, {u"/x/.p", u"", u"/x/.p.vlm"},
      {u"A.", u"", u"A.vlm"},          {u"/x.p/", u"", u"/x.p/.vlm"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(detail::extract_extension(c.path), c.extension) << i18n::to_string(c.path);
    EXPECT_EQ(detail::replace_extension(c.path, u"vlm"), c.replaced) << i18n::to_string(c.path);
  }
}

}  // namespace
}  // namespace fl::filesystem
