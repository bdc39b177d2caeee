// The class runtime's descriptions of classes in files.
#include <gtest/gtest.h>

#include <optional>

#include "platform/paths/FileView.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/Class.h"
#include "platform/runtime/ClassTable.h"
#include "platform/runtime/MetaClass.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using tarn::internal::makeInterned;

class Runtime : public testing::Test {
 protected:
  Runtime() { PathDispatcher::getDispatcher().setClassPath({root_.path()}); }
  ~Runtime() override { sotarn::setClassTable(nullptr); }

  void write(const std::string& name, const std::string& text) { root_.write(name, text); }

  static bool exists(const std::string& name) {
    const auto object = tarn::COSClass::getClassInterface(makeInterned(name));
    return tarn::COSClassPtrHelper::getObject(object) != nullptr;
  }

  static bool derives(const std::string& name, const std::string& base) {
    const auto pointer = tarn::COSClass::getClassInterface(makeInterned(name));
    const auto* object = tarn::COSClassPtrHelper::getObject(pointer);
    return object != nullptr && object->isDerivedFrom(makeInterned(base));
  }

  // The file that makes the class unreadable; empty if there is none.
  static std::string unreadableOf(const std::string& name) {
    try {
      derives(name, "velum.System");
    } catch (const fl::filesystem::ReadError& error) {
      return error.path();
    }
    return "";
  }

  static sotarn::MetaClass metaClass(const std::string& name) {
    return sotarn::MetaClass::fromID(makeInterned(name));
  }

  static std::vector<std::string> superClassesOf(const std::string& name) {
    std::vector<std::string> names;
    for (const sotarn::MetaClass& superClass : metaClass(name).getSuperClasses()) {
      names.push_back(superClass.getName());
    }
    return names;
  }

  // Kind, value type, companion and values of a property's set, as one text.
  static std::string setOf(const std::string& name, const std::string& property) {
    const sotarn::MetaProperty meta = metaClass(name).getProperty(property);
    const sotarn::ConstrainedSetInfo info = meta.getConstrainedSetInfo();
    EXPECT_EQ(meta.isConstrainedSetTarget(), info.kind != 0);
    std::string text = std::to_string(info.kind) + " " + std::to_string(info.valueType) + " ";
    for (const char16_t c : info.setPropertyName) text.push_back(static_cast<char>(c));
    for (const fl::ustring& value : info.values) {
      text.push_back('|');
      for (const char16_t c : value) text.push_back(static_cast<char>(c));
    }
    return text;
  }

  TemporaryFolder root_;
};

TEST_F(Runtime, EnvironmentClassesPrecedeFiles) {
  write("handle.vlm", "classdef handle < velum.System\nend\n");
  EXPECT_TRUE(exists("velum.system.mixin.FiniteSource"));
  EXPECT_TRUE(derives("velum.System", "velum.system.coder.System"));
  EXPECT_TRUE(derives("velum.System", "velum.system.SystemImpl"));
  EXPECT_TRUE(derives("velum.system.mixin.internal.CustomIcon", "velum.system.SystemImpl"));
  EXPECT_FALSE(derives("velum.system.mixin.Propagates", "velum.system.coder.System"));
  EXPECT_FALSE(derives("handle", "velum.System"));
  EXPECT_FALSE(exists("velum.system.mixin"));
  EXPECT_FALSE(exists(""));
}

TEST_F(Runtime, DerivationFollowsFilesAndCycles) {
  write("a/Top.vlm", "classdef Top < b.c.Middle\nend\n");
  write("b/c/Middle.vlm", "classdef Middle < a.Top & missing.Class & velum.System\nend\n");
  EXPECT_TRUE(derives("a.Top", "velum.system.SystemImpl"));
  EXPECT_TRUE(derives("a.Top", "a.Top"));
  EXPECT_TRUE(derives("b.c.Middle", "a.Top"));
  EXPECT_FALSE(derives("a.Top", "missing.Other"));
  EXPECT_EQ(superClassesOf("b.c.Middle"), (std::vector<std::string>{"a.Top", "missing.Class"}));
}

TEST_F(Runtime, OnlySystemObjectsHaveSuperclasses) {
  write("Plain.vlm", "classdef Plain < a.B & handle\nend\n");
  EXPECT_TRUE(exists("Plain"));
  EXPECT_EQ(superClassesOf("Plain"), std::vector<std::string>{});
  EXPECT_EQ(superClassesOf("Nothing"), std::vector<std::string>{});
}

TEST_F(Runtime, DescribesBrokenFilesByWhatCanBeRead) {
  write("Broken.vlm", "classdef Broken < velum.System\nproperties\nx = (\nend\n");
  write("Deep.vlm", "classdef Deep < velum.System\nproperties\nx = " + std::string(5000, '('));
  write("Script.vlm", "x = 1\n");
  write("Empty.vlm", "");
  EXPECT_TRUE(derives("Broken", "velum.System"));
  EXPECT_TRUE(derives("Deep", "velum.System"));
  for (const char* name : {"Script", "Empty"}) {
    EXPECT_TRUE(exists(name)) << name;
    EXPECT_FALSE(derives(name, "velum.system.SystemImpl")) << name;
  }
}

TEST_F(Runtime, WhatCannotBeReadIsNotMissing) {
  using std::filesystem::create_symlink;
  const std::string longName(300, 'x');
  std::filesystem::create_directory(root_.path() + "/Folder.vlm");
  for (const char* name : {"Loop.vlm", "PLoop.p", "sub"}) {
    create_symlink(name, root_.path() + "/" + name);
  }
  write("PLoop.vlm", "classdef PLoop < velum.System\nend\n");
  create_symlink("nowhere", root_.path() + "/Dangling.vlm");
  const struct {
    const char* what;
    std::string name;
    // Empty for a class that is missing.
    std::string path;
  } table[] = {
      {"a folder in place of the file", "Folder", "/Folder.vlm"},
      {"a loop of links", "Loop", "/Loop.vlm"},
      {"a loop of links in place of the p-file", "PLoop", "/PLoop.p"},
      {"a package that cannot be searched", "sub.C", "/sub/C.vlm"},
      {"a name that is too long for a file", longName, "/" + longName + ".vlm"},
      {"a dangling link", "Dangling", ""},
      {"no such package", "none.C", ""},
      {"a file in place of the package", "PLoop.C", ""},
  };
  for (const auto& row : table) {
    EXPECT_EQ(unreadableOf(row.name), row.path.empty() ? "" : root_.path() + row.path) << row.what;
    write("Heir.vlm", "classdef Heir < velum.System & " + row.name + "\nend\n");
    EXPECT_EQ(unreadableOf("Heir").empty(), row.path.empty()) << row.what;
    sotarn::setClassTable(std::make_shared<sotarn::ClassTable>(sotarn::parseClassTable(
        R"({"classes": {")" + row.name + R"(": {"superclasses": ["velum.System"]}}})")));
    EXPECT_EQ(unreadableOf(row.name).empty(), row.path.empty()) << row.what;
    sotarn::setClassTable(nullptr);
  }
}

TEST_F(Runtime, FailuresToReadAreNotCached) {
  for (int i = 1; i < 50; ++i) {
    write("C" + std::to_string(i) + ".vlm", "classdef C < C" + std::to_string(i - 1) + "\nend\n");
  }
  const std::string base = root_.path() + "/C0.vlm";
  // A short ancestry and a long one, which the thread keeps as a graph of classes.
  for (const char* name : {"C3", "C49"}) {
    const fl::filesystem::FileView view;
    const fl::filesystem::FileView::Scope scope(view);
    std::filesystem::create_directory(base);
    EXPECT_EQ(unreadableOf(name), base);
    std::filesystem::remove(base);
    write("C0.vlm", "classdef C0 < velum.System\nend\n");
    EXPECT_TRUE(derives(name, "velum.System"));
    std::filesystem::remove(base);
  }
}

TEST_F(Runtime, PFilesAreDescribedByTheirSource) {
  write("Both.p", "\x01\x02");
  write("Both.vlm", "classdef Both < velum.System\nend\n");
  write("Alone.p", "classdef Alone < velum.System\nend\n");
  EXPECT_TRUE(derives("Both", "velum.System"));
  EXPECT_TRUE(exists("Alone"));
  EXPECT_FALSE(derives("Alone", "velum.System"));
  EXPECT_EQ(sotarn::describeClass("Alone")->origin, sotarn::ClassOriginType::pFileOnly);
}

TEST_F(Runtime, ConstrainedSets) {
  write("C.vlm", R"(classdef C < velum.System
  properties
    Mode, Text, Empty, Nested, Far, Round, Wrapped, Other, Indirect, Twice, M, X
  end
  properties (Constant)
    ModeSet = velum.system.StringSet({'auto', 'it''s'; "x"; {'y'}});
    TextSet = velum . system.StringSet("a""b", 'c')
    EmptySet = velum.system.StringSet();
    NestedSet = velum.system.internal.DynamicStringSet([["p"], "q"], f('no'), Name='no');
    RoundSet = velum.system.internal.RoundingMethodSet();
    WrappedSet = (velum.system.StringSet({'a'}));
    OtherSet = my.system.StringSet({'a'});
    IndirectSet = velum.system.StringSet;
    TwiceSet = 1
    TwiceSet = velum.system.StringSet({'a'});
    LonelySet = velum.system.StringSet({'a'});
    MSet = velum.system.MessageCatalogSet({'a'})
    XSet = velum.system.StringSetGF({'a'})
  end
end
)");
  const std::pair<const char*, const char*> expected[] = {
      {"Mode", "1 1 ModeSet|auto|it's|x|y"},
      {"Text", "1 2 TextSet|a\"b|c"},
      {"Empty", "1 1 EmptySet"},
      {"Nested", "4 2 NestedSet|p|q"},
      {"Far", "0 0 "},
      {"Round", "6 1 RoundSet"},
      {"Wrapped", "0 0 "},
      {"Other", "0 0 "},
      {"Indirect", "0 0 "},
      {"Twice", "0 0 "},
      {"Lonely", "0 0 "},
      {"M", "3 1 MSet|a"},
      {"X", "2 1 XSet|a"},
      {"Unknown", "0 0 "},
  };
  for (const auto& [property, set] : expected) EXPECT_EQ(setOf("C", property), set) << property;
}

TEST_F(Runtime, FactsAlongTheHierarchy) {
  write("Base.vlm", R"(classdef (~StrictDefaults, StrictDefaults = true) Base < velum.System
  properties (Abstract, ~Abstract, Abstract)
    A
  end
  properties (Dependent)
    D, E
  end
  properties (Dependent, Dependent = false)
    F
  end
  methods
    function m(obj), end
    s(obj)
  end
end
)");
  write("Side.vlm",
        "classdef (StrictDefaults, StrictDefaults = false) Side < velum.System\n"
        "properties (Dependent = (true))\nE\nend\nend\n");
  write("Top.vlm", R"(classdef Top < Side & Base & Top
  properties (Abstract = false)
    A
  end
  properties
    D
    D
  end
  properties (Dependent)
    D
  end
  methods
    function own(obj), end
  end
end
)");
  const sotarn::MetaClass top = metaClass("Top");
  EXPECT_TRUE(top.isStrictDefaultsClass());
  EXPECT_FALSE(metaClass("Side").isStrictDefaultsClass());
  EXPECT_TRUE(top.getProperty("A").isAbstractInAnyClass());
  EXPECT_FALSE(top.getProperty("D").isAbstractInAnyClass());
  // Its own first declaration has precedence over the base's, and the first superclass over the
  // second.
  EXPECT_FALSE(top.getProperty("D").isDependent());
  EXPECT_FALSE(top.getProperty("E").isDependent());
  EXPECT_TRUE(metaClass("Base").getProperty("D").isDependent());
  EXPECT_FALSE(top.getProperty("F").isDependent());
  EXPECT_TRUE(top.isMethodDefinedInSuperClass("m"));
  EXPECT_FALSE(top.isMethodDefinedInSuperClass("s"));
  EXPECT_FALSE(top.isMethodDefinedInSuperClass("own"));
}

TEST_F(Runtime, OneFileMayBeSeveralClasses) {
  write("a/B.vlm", "classdef B < velum.System\nmethods\nfunction m, end\nend\nend\n");
  PathDispatcher::getDispatcher().setClassPath({root_.path(), root_.path() + "/a"});
  EXPECT_TRUE(derives("a.B", "a.B"));
  EXPECT_TRUE(derives("B", "B"));
  EXPECT_FALSE(derives("B", "a.B"));
  EXPECT_FALSE(metaClass("B").isMethodDefinedInSuperClass("m"));
}

TEST_F(Runtime, AClassTableReplacesFactsOfTheSource) {
  write("C.vlm",
        "classdef C < handle\nproperties (Dependent)\nP, Q\nend\nproperties (Abstract)\nR, S\n"
        "end\nmethods\nfunction m, end\nend\nend\n");
  sotarn::setClassTable(
      std::make_shared<sotarn::ClassTable>(sotarn::parseClassTable(R"({"classes": {
      "C": {"superclasses": ["only.Table"], "methods": ["n"],
            "properties": {"P": {"abstract": true}, "R": {"dependent": true},
                           "S": {"abstract": false, "constrainedSet": {"kind": 0}},
                           "Q": {"dependent": false,
                                 "constrainedSet": {"kind": 1, "values": ["v"]}}}},
      "only.Table": {"superclasses": ["velum.System"], "strictDefaults": true,
                     "methods": ["m", "inherited"]}}})")));
  EXPECT_TRUE(derives("C", "velum.system.SystemImpl"));
  EXPECT_EQ(superClassesOf("C"), std::vector<std::string>{"only.Table"});
  EXPECT_EQ(sotarn::describeClass("only.Table")->sourcePath, "");
  const sotarn::MetaClass c = metaClass("C");
  EXPECT_TRUE(c.isStrictDefaultsClass());
  EXPECT_TRUE(c.getProperty("P").isAbstractInAnyClass());
  EXPECT_TRUE(c.getProperty("P").isDependent());
  EXPECT_FALSE(c.getProperty("Q").isDependent());
  EXPECT_TRUE(c.getProperty("R").isDependent());
  EXPECT_TRUE(c.getProperty("R").isAbstractInAnyClass());
  EXPECT_FALSE(c.getProperty("S").isAbstractInAnyClass());
  EXPECT_EQ(setOf("C", "Q"), "1 1 QSet|v");
  EXPECT_EQ(setOf("C", "S"), "0 1 SSet");
  EXPECT_TRUE(c.isMethodDefinedInSuperClass("m"));
  EXPECT_FALSE(c.isMethodDefinedInSuperClass("n"));
}

}  // namespace
