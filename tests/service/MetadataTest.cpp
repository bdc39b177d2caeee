// Class descriptions from the environment, over class files in a folder.
#include <filesystem>
#include <fstream>

#include "metadata/VELUMMetaDataInterface.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"
#include "service/UpdaterImpl.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca {
namespace {

namespace fs = std::filesystem;

class Metadata : public ::testing::Test {
 protected:
  Metadata() {
    fs::create_directories(root_);
    PathDispatcher::getDispatcher().setClassPath({root_.string()});
  }

  void write(const std::string& path, const std::string& text) const {
    fs::create_directories((root_ / path).parent_path());
    std::ofstream(root_ / path, std::ios::binary) << text;
  }

  std::unique_ptr<MetaClass> classOf(const fl::ustring& name) const {
    return VELUMMetaDataInterface().getMetaClass(name);
  }

  TemporaryFolder folder_;
  fs::path root_ = folder_.path() + "/50%23 off #1";
};

TEST_F(Metadata, SystemObjects) {
  write("a/Coder.vlm", "classdef Coder < velum.system.coder.System\nend\n");
  write("a/Impl.vlm", "classdef Impl < velum.system.SystemImpl & a.Coder\nend\n");
  write("a/Far.vlm", "classdef Far < handle & a.Coder & a.Missing & velum.System\nend\n");
  write("a/Plain.vlm", "classdef Plain < handle\nend\n");
  write("a/Loop.vlm", "classdef Loop < a.Loop\nend\n");
  EXPECT_TRUE(classOf(u"a.Coder")->isSystemObject());
  EXPECT_TRUE(classOf(u"a.Impl")->isSystemObject());
  EXPECT_TRUE(classOf(u"a.Far")->isSystemObject());
  EXPECT_FALSE(classOf(u"a.Plain")->isSystemObject());
  EXPECT_FALSE(classOf(u"a.Loop")->isSystemObject());
  EXPECT_FALSE(classOf(u"a.Missing")->isSystemObject());
  EXPECT_FALSE(classOf(u"")->isSystemObject());
  EXPECT_EQ(classOf(u"a.Far")->getSuperClassNames(),
            (std::vector<fl::ustring>{u"a.Coder", u"a.Missing"}));
  EXPECT_TRUE(classOf(u"a.Coder")->getSuperClassNames().empty());
  EXPECT_TRUE(classOf(u"a.Missing")->getSuperClassNames().empty());
}

// Without pauses, with texts of the same size.
TEST_F(Metadata, ChangedFilesAreSeenByTheNextCall) {
  UpdaterImpl updater;
  for (int round = 0; round < 50; ++round) {
    const bool isAbstract = round % 3 == 0;
    const std::string name = round % 2 == 0 ? "One" : "Two";
    write("Base.vlm", std::string("classdef Base < velum.System\nproperties (") +
                          (isAbstract ? "Abstract" : "Constant") + ")\nG\nend\nend\n");
    write("C.vlm", "classdef C < Base\nproperties (Logical)\n" + name +
                       " = 1;\nend\nproperties (PositiveInteger)\nG = 1;\nend\nend\n");
    const UpdateResult result = updater.update(u"C", allFamilies, false).at(0);
    EXPECT_NE(result.text.find(fl::i18n::to_ustring(name) + u" (1, 1) logical"), fl::ustring::npos);
    EXPECT_EQ(result.messages.empty(), !isAbstract);
  }
}

TEST_F(Metadata, PlanHasTheFamilies) {
  write("C.vlm",
        "classdef C < velum.system.mixin.CustomIcon\nproperties (Logical)\nA = true;\nend\n"
        "methods (Access = protected)\nfunction flag = isOutputSizeLockedImpl(~, ~)\n"
        "flag = true;\nend\nend\nend\n");
  const auto planned = planUpdate(u"C", 7, false);
  ASSERT_EQ(planned.size(), 1U);
  const auto& actions = planned[0].actions;
  ASSERT_EQ(actions.size(), 4U);
  using enum RuleFamilyType;
  EXPECT_EQ(actions[0].family, attributes);
  EXPECT_EQ(actions[1].family, attributes);
  EXPECT_EQ(actions[2].family, mixins);
  EXPECT_EQ(actions[3].family, impl);
  EXPECT_TRUE(actions[1].isGroup);
  EXPECT_EQ(actions[1].edits.size(), 2U);
  EXPECT_EQ(actions[1].edits[0].text, u" logical");
  EXPECT_FALSE(actions[2].isGroup);
  ASSERT_EQ(actions[2].edits.size(), 1U);
  EXPECT_EQ(actions[2].edits[0].text, u"velum.System");
  EXPECT_EQ(actions[2].extent, actions[2].edits[0].extent);
  EXPECT_EQ(actions[3].extent, (Extent{{5, 0}, {7, 3}}));
  EXPECT_EQ(planUpdate(u"C", 5, false)[0].actions[0].family, mixins);
}

// With a walk from each of its classes, the chain takes minutes, which is more than a test may.
TEST_F(Metadata, AChainOfClassesIsWalkedOnce) {
  constexpr int count = 2000;
  write("C0.vlm", "classdef C0 < velum.System\nproperties\nP\nend\nend\n");
  for (int i = 1; i < count; ++i) {
    write(fmt::format("C{}.vlm", i),
          fmt::format("classdef C{} < C{}\nproperties (Logical)\nQ = true;\nend\nend\n", i, i - 1));
  }
  const auto last = fl::i18n::to_ustring(fmt::format("C{}", count - 1));
  UpdaterImpl updater;
  const std::string report = fl::i18n::to_string(updater.reportClass(last));
  EXPECT_TRUE(report.starts_with("CLASS: C1999\nSystem object\nSuperclasses:  C1998\n"));
  EXPECT_TRUE(report.find("\nCLASS: C0\nSystem object\nSuperclasses: None\n1 property blocks\n") !=
              std::string::npos);
  EXPECT_NE(updater.reportActions(last, true).find(u"\nCLASS: C0\n"), fl::ustring::npos);
  const auto results = updater.update(last, allFamilies, true);
  ASSERT_EQ(results.size(), std::size_t{count});
  EXPECT_TRUE(results.front().updated && !results.back().updated);
  EXPECT_EQ(planUpdate(last, allFamilies, true).size(), results.size());
}

}  // namespace
}  // namespace soca
