// Class descriptions from the environment, over class files in a folder.
#include <filesystem>
#include <fstream>

#include "metadata/VELUMMetaDataInterface.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include "platform/failure/Exception.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "rules/RuleFamilies.h"
#include "service/ClassLoader.h"
#include "service/UpdatePlan.h"
#include "service/UpdaterImpl.h"
#include "tests/Places.h"
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

  // The id that looking up the file raises, or the path below the root.
  std::string fileOf(const fl::ustring& name) const {
    try {
      return fs::path(fl::i18n::to_string(classOf(name)->getClassFile()))
          .lexically_relative(root_)
          .string();
    } catch (const foundation::core::except::IMsgIDException& failure) {
      return failure.GetID();
    }
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

TEST_F(Metadata, Files) {
  write("a/Source.vlm", "classdef Source < velum.System\nend\n");
  write("a/Other.p", "x");
  write("Both.vlm", "classdef Both < velum.System\nend\n");
  write("Both.p", "x");
  EXPECT_EQ(fileOf(u"a.Source"), "a/Source.vlm");
  EXPECT_EQ(fileOf(u"a.Other"), "VELUM:system:Analyzer:PFileExists");
  EXPECT_EQ(fileOf(u"Both"), "VELUM:system:Analyzer:PFileExists");
  EXPECT_EQ(fileOf(u"a.Missing"), "VELUM:system:Analyzer:NoFileForClass");
  EXPECT_EQ(fileOf(u"velum.System"), "VELUM:system:Analyzer:NoFileForClass");
}

TEST_F(Metadata, Facts) {
  write("Base.vlm",
        "classdef (StrictDefaults) Base < velum.System\nproperties (Abstract)\nA\nend\n"
        "methods\nfunction f(o)\nend\nend\nend\n");
  write("C.vlm",
        "classdef C < Base\nproperties (Dependent)\nD\nend\nproperties\nA = 'a'\n"
        "ASet = velum.system.StringSet([\"a\", \"b\"])\nend\nend\n");
  const auto metaClass = classOf(u"C");
  EXPECT_TRUE(metaClass->isStrictDefaultsClass());
  EXPECT_TRUE(metaClass->isMethodDefinedInSuperClass(u"f"));
  EXPECT_FALSE(classOf(u"Base")->isMethodDefinedInSuperClass(u"f"));
  EXPECT_TRUE(metaClass->isAbstractInAnyClass(u"A"));
  EXPECT_FALSE(metaClass->isAbstractInAnyClass(u"D"));
  EXPECT_TRUE(metaClass->isDependent(u"D"));
  EXPECT_FALSE(metaClass->isDependent(u"A"));
  const ConstrainedSetInfo set = metaClass->getConstrainedSetInfo(u"A");
  EXPECT_EQ(set.kind, 1U);
  EXPECT_EQ(set.valueType, 2U);
  EXPECT_EQ(set.setPropertyName, u"ASet");
  EXPECT_EQ(set.values, (std::vector<fl::ustring>{u"a", u"b"}));
  EXPECT_EQ(metaClass->getConstrainedSetInfo(u"D").kind, 0U);
  EXPECT_TRUE(metaClass->getConstrainedSetInfo(u"D").values.empty());
}

TEST_F(Metadata, LoadedClass) {
  const std::string text = "classdef C < velum.System\r\n\n\tproperties\n  end\nend\n \n";
  write("C.vlm", text);
  VELUMMetaDataInterface metaData;
  const auto loaded = ClassLoader{u"C", &metaData}.load();
  EXPECT_EQ(loaded->className, u"C");
  EXPECT_EQ(fl::i18n::to_string(loaded->getSourceText()), text);
  EXPECT_EQ(loaded->sourceTextView(), loaded->getSourceText());
  EXPECT_EQ(loaded->definition->getNumberOfPropertiesBlocks(), 1U);
}

// The plan has the results of the service, for every example and every selection of families.
TEST(UpdatePlan, SameResultsAsTheService) {
  PathDispatcher::getDispatcher().setClassPath({testing::projectPath("examples")});
  std::size_t updated = 0;
  for (const auto& file : fs::recursive_directory_iterator(testing::projectPath("examples"))) {
    if (file.path().extension() != ".vlm") continue;
    std::string name =
        file.path().lexically_relative(testing::projectPath("examples")).replace_extension();
    std::ranges::replace(name, '/', '.');
    const fl::ustring className = fl::i18n::to_ustring(name);
    if (!VELUMMetaDataInterface().getMetaClass(className)->isSystemObject()) continue;
    for (UpdateMask mask = 0; mask <= allFamilies; ++mask) {
      SCOPED_TRACE(name);
      const auto planned = planUpdate(className, mask, false);
      const auto results = UpdaterImpl().update(className, mask, false);
      ASSERT_EQ(planned.size(), 1U);
      ASSERT_EQ(results.size(), 1U);
      EXPECT_EQ(planned[0].text(), results[0].text);
      EXPECT_EQ(planned[0].result.messages, results[0].messages);
      EXPECT_EQ(planned[0].result.updated, results[0].updated);
      EXPECT_EQ(planned[0].result.fileName, results[0].fileName);
      EXPECT_EQ(planned[0].actions.empty(), !results[0].updated);
      if (results[0].updated) ++updated;
    }
  }
  EXPECT_GT(updated, 0U);
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
