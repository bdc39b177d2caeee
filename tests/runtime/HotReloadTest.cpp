// Cached results must never be used for another text than the one they were made from.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <thread>

#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/FileView.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/runtime/ClassTable.h"
#include "platform/runtime/DescriptionCache.h"
#include "platform/runtime/ReadClasses.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

class HotReload : public testing::Test {
 protected:
  HotReload() { PathDispatcher::getDispatcher().setClassPath({root_.path()}); }

  std::string write(char base) {
    return root_.write("C.vlm", std::string("classdef C < ") + base + "\nend\n");
  }

  // The superclass by the class runtime and by the analyzer.
  static std::string readBoth(const std::string& path) {
    const auto analysis = ca::analyzeFile(path);
    const auto super = analysis->getClassdef()->superClasses.front()->text.getText();
    return sotarn::describeClass("C")->superClasses.front() + static_cast<char>(super[0]);
  }

  static void setTimes(const std::string& path, long seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  }

  TemporaryFolder root_;
};

TEST_F(HotReload, ChangesAreSeenImmediately) {
  // Without pauses: most of the time stamps are equal.
  for (int round = 0; round < 200; ++round) {
    const char base = static_cast<char>('A' + round % 26);
    EXPECT_EQ(readBoth(write(base)), std::string(2, base));
  }
}

TEST_F(HotReload, ChangesAreSeenUnderAnOldTimeStampAndTheSameSize) {
  const std::string path = write('A');
  setTimes(path, 1000);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_EQ(readBoth(path), "AA");
  EXPECT_EQ(readBoth(path), "AA");
  write('B');
  setTimes(path, 1000);
  EXPECT_EQ(readBoth(path), "BB");
}

TEST_F(HotReload, AnUnchangedFileIsAnalysedOnce) {
  const std::string path = write('A');
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_EQ(ca::analyzeFile(path), ca::analyzeFile(path));
  EXPECT_EQ(sotarn::describeClass("C"), sotarn::describeClass("C"));
}

TEST(DescriptionCache, KeepsWhatIsUsedAndOnlyUnderItsStamp) {
  sotarn::DescriptionCache cache;
  const fl::filesystem::FileStamp stamp{.size = 1};
  const fl::filesystem::FileStamp other{.size = 2};
  const auto description = std::make_shared<const sotarn::ClassDescription>();
  const auto keepMany = [&](const std::string& prefix) {
    for (int i = 0; i < 1500; ++i) cache.keep(prefix + std::to_string(i), stamp, description);
  };
  cache.keep("used", stamp, description);
  EXPECT_EQ(cache.find("used", other), nullptr);
  keepMany("a");
  EXPECT_EQ(cache.find("used", other), nullptr);
  EXPECT_EQ(cache.find("used", stamp), description);
  keepMany("b");
  EXPECT_EQ(cache.find("used", stamp), description);
  EXPECT_EQ(cache.find("a0", stamp), nullptr);
}

TEST_F(HotReload, AnOverlayIsReadOnItsThreadOnly) {
  const std::string path = write('A');
  {
    const fl::filesystem::OverlayScope outer(path, u"classdef C < B\nend\n");
    EXPECT_EQ(readBoth(path), "BB");
    const fl::filesystem::OverlayScope inner(path, u"classdef C < D\nend\n");
    EXPECT_EQ(readBoth(path), "DD");
    std::thread([&] { EXPECT_EQ(readBoth(path), "AA"); }).join();
  }
  EXPECT_EQ(readBoth(path), "AA");
  const fl::filesystem::OverlayScope onNothing(root_.path() + "/New.vlm", u"classdef New\nend\n");
  EXPECT_NE(sotarn::describeClass("New"), nullptr);
}

TEST_F(HotReload, UnderAViewFilesAreCachedButOverlaysAreRead) {
  const auto superOf = [](const char* name) {
    const auto description = sotarn::describeClass(name);
    return description == nullptr ? "none" : description->superClasses.front();
  };
  const std::string path = write('A');
  {
    const fl::filesystem::FileView view;
    const fl::filesystem::FileView::Scope scope(view);
    EXPECT_EQ(superOf("C") + superOf("pkg.New"), "Anone");
    write('B');
    root_.write("pkg/New.vlm", "classdef New < N\nend\n");
    EXPECT_EQ(superOf("C") + superOf("pkg.New"), "Anone");
    {
      const fl::filesystem::OverlayScope over(path, u"classdef C < D\nend\n");
      EXPECT_EQ(superOf("C"), "D");
      const fl::filesystem::OverlayScope overNew(root_.path() + "/pkg/New.vlm",
                                                 u"classdef New < E\nend\n");
      EXPECT_EQ(superOf("pkg.New"), "E");
    }
    EXPECT_EQ(superOf("C") + superOf("pkg.New"), "Anone");
    std::thread([&] { EXPECT_EQ(superOf("C") + superOf("pkg.New"), "BN"); }).join();
    const fl::filesystem::FileView later;
    const fl::filesystem::FileView::Scope laterScope(later);
    EXPECT_EQ(superOf("C") + superOf("pkg.New"), "BN");
  }
  write('F');
  EXPECT_EQ(superOf("C"), "F");
}

TEST_F(HotReload, ACallHasAViewOfItsOwnOrThatOfItsCaller) {
  const auto superNow = [] { return sotarn::describeClass("C")->superClasses.front(); };
  const auto supersDuringCall = [&](char next) {
    const fl::filesystem::FileView::CallScope call;
    std::string supers = superNow();
    write(next);
    return supers += superNow();
  };
  write('A');
  EXPECT_EQ(supersDuringCall('B'), "AA");
  EXPECT_EQ(supersDuringCall('D'), "BB");
  EXPECT_EQ(superNow(), "D");
  const fl::filesystem::FileView view;
  const fl::filesystem::FileView::Scope scope(view);
  EXPECT_EQ(supersDuringCall('E') + supersDuringCall('F') + superNow(), "DDDDD");
}

// What of a chain, a class on its own and a class of the class table has changed.
TEST_F(HotReload, ChangedClassesAreFoundWithAllThatDeriveFromThem) {
  sotarn::setClassTable(std::make_shared<sotarn::ClassTable>(sotarn::parseClassTable(
      R"({"classes": {"T": {"superclasses": ["B"]}, "U": {"superclasses": ["A"]}}})")));
  const std::vector<std::string> names = {"A", "B", "C", "X", "T", "U", "P"};
  PathDispatcher::getDispatcher().setClassPath({root_.path() + "/front", root_.path()});
  const auto writeAll = [&] {
    for (const char* file : {"/front", "/Missing.vlm", "/P.vlm", "/X.p"}) {
      std::filesystem::remove_all(root_.path() + file);
    }
    root_.write("A.vlm", "classdef A < velum.System & Missing\nend\n");
    root_.write("B.vlm", "classdef B < A\nend\n");
    root_.write("C.vlm", "classdef C < B\nend\n");
    root_.write("X.vlm", "classdef X < velum.System\nend\n");
    root_.write("T.vlm", "classdef T < X\nend\n");
    root_.write("P.p", "");
  };
  const auto changedAfter = [&](const auto& change, int milliseconds) {
    writeAll();
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    sotarn::ReadClasses reads;
    const auto describeAll = [&] {
      const sotarn::ReadClasses::Scope scope(&reads);
      for (const std::string& name : names) sotarn::describeClass(name);
    };
    describeAll();
    EXPECT_EQ(reads.findChanged(names).size(), 0);
    change();
    std::thread(describeAll).join();
    const auto changed = reads.findChanged(names);
    std::string text;
    for (const std::string& name : names) text += changed.contains(name) ? name : "";
    return text;
  };
  const struct {
    const char* file;
    const char* text;
    const char* changed;
  } table[] = {
      {"A.vlm", "classdef A < velum.System & missing\nend\n", "ABCTU"},
      {"C.vlm", "classdef C < X\nend\n", "C"},
      {"X.vlm", "classdef X < handle\nend\n", "X"},
      {"T.vlm", "classdef T\nend\n", "T"},
      {"Missing.vlm", "classdef Missing\nend\n", "ABCTU"},
      {"Other.vlm", "classdef Other\nend\n", ""},
      {"front/B.vlm", "classdef B < A\nend\n", "BCT"},
      {"front/A.p", "", "ABCTU"},
      {"X.p", "", "X"},
      {"P.vlm", "classdef P\nend\n", "P"},
  };
  // Of a file that has just changed, the text is compared.
  for (const int milliseconds : {0, 30}) {
    for (const auto& row : table) {
      const auto change = [&] { root_.write(row.file, row.text); };
      EXPECT_EQ(changedAfter(change, milliseconds), row.changed) << row.file;
    }
    const auto remove = [&] { std::filesystem::remove(root_.path() + "/B.vlm"); };
    EXPECT_EQ(changedAfter(remove, milliseconds), "BCT");
  }
  sotarn::setClassTable(nullptr);
}

}  // namespace
