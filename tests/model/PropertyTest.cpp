#include "model/Property.h"

#include <gtest/gtest.h>

#include "tests/model/ModelOfText.h"

namespace soca {
namespace {

using testing::columnsOf;
using testing::ModelOfText;

// A class with one declaration, at the beginning of line 2.
ModelOfText classWithProperty(const std::string& declaration, const std::string& methods = "") {
  return ModelOfText(fl::i18n::to_ustring("classdef C\nproperties\n" + declaration +
                                          "\nend\nmethods\n" + methods + "\nend\nend\n"));
}

const Property& propertyOf(const ModelOfText& model) {
  return model.definition->getPropertiesBlocks()[0].getProperties()[0];
}

struct PartsCase {
  const char* declaration;
  // Default, size, class, validators, braces: one letter for each that is present.
  const char* parts;
  const char* full;
  const char* size;
  const char* className;
  const char* validators;
  const char* validation;
};

const PartsCase partsCases[] = {
    {"Foo", "", "0-3", "3-3", "3-3", "3-3", "3-3"},
    {"Foo = 1;", "d", "0-7", "3-3", "3-3", "3-3", "3-7"},
    {"Foo (1,1) double {mustBePositive} = 1", "dscvb", "0-37", "4-9", "10-16", "17-33", "3-33"},
    {"Foo double", "c", "0-10", "3-3", "4-10", "10-10", "3-10"},
    {"Foo  pkg.sub.Type = 2", "dc", "0-21", "3-3", "5-17", "17-17", "3-17"},
    {"Foo ( 2 , : ) = 3", "ds", "0-17", "4-13", "13-13", "13-13", "3-13"},
    {"Foo {a, b(1)}", "vb", "0-13", "3-3", "3-3", "4-13", "3-13"},
    {"Foo (1,1) { a }", "svb", "0-15", "4-9", "9-9", "10-15", "3-15"},
    {"Foo {}", "", "0-6", "3-3", "3-3", "3-3", "3-6"},
    {"Foo {} = 1, Bar", "d", "0-10", "3-3", "3-3", "3-3", "3-10"},
};

TEST(Property, Parts) {
  for (const PartsCase& testCase : partsCases) {
    SCOPED_TRACE(testCase.declaration);
    const ModelOfText model = classWithProperty(testCase.declaration);
    const Property& property = propertyOf(model);
    std::string parts;
    if (property.hasDefaultValue()) parts += 'd';
    if (property.hasSize()) parts += 's';
    if (property.hasClass()) parts += 'c';
    if (property.hasValidators()) parts += 'v';
    if (property.hasValidatorBraces()) parts += 'b';
    EXPECT_EQ(parts, testCase.parts);
    EXPECT_EQ(property.getName(), u"Foo");
    EXPECT_EQ(columnsOf(property.getFullExtent()), testCase.full);
    EXPECT_EQ(columnsOf(property.getSizeExtent()), testCase.size);
    EXPECT_EQ(columnsOf(property.getClassExtent()), testCase.className);
    EXPECT_EQ(columnsOf(property.getValidatorsExtent()), testCase.validators);
    EXPECT_EQ(columnsOf(property.getValidationExtent()), testCase.validation);
  }
}

TEST(Property, PartsOverLines) {
  const ModelOfText model = classWithProperty("Foo (1, ...\n  1) double ...\n {a} = 1");
  EXPECT_EQ(propertyOf(model).getSizeExtent(), (Extent{{2, 4}, {3, 4}}));
  EXPECT_EQ(propertyOf(model).getValidationExtent(), (Extent{{2, 3}, {4, 4}}));
}

TEST(Property, Validators) {
  const ModelOfText model = classWithProperty("Foo {mustBeA, mustBeB(1, 2), pkg.mustBeC, p.d(3)}");
  const Property& property = propertyOf(model);
  EXPECT_EQ(property.getNumberOfValidators(), 4U);
  EXPECT_TRUE(property.hasValidator(u"mustBeA"));
  EXPECT_TRUE(property.hasValidator(u"mustBeB"));
  EXPECT_FALSE(property.hasValidator(u"mustBeC"));
  EXPECT_FALSE(property.hasValidator(u"pkg.mustBeC"));
  // A dotted name is treated as an empty name.
  EXPECT_TRUE(property.hasValidator(u""));
  EXPECT_FALSE(propertyOf(classWithProperty("Foo {a}")).hasValidator(u""));
  EXPECT_EQ(propertyOf(classWithProperty("Foo")).getNumberOfValidators(), 0U);
  EXPECT_FALSE(propertyOf(classWithProperty("Foo")).hasValidator(u""));
}

TEST(Property, StringSetDefault) {
  const std::pair<const char*, bool> rows[] = {
      {"Foo = velum.system.StringSet({'a','b'})", true},
      {"Foo = velum.system.StringSet([\"a\"])", true},
      {"Foo = velum.system.StringSet(\"a\", {'b'})", true},
      {"Foo = velum.system.StringSet()", true},
      {"Foo = velum.system.StringSetOfMine({'a'})", true},
      {"Foo = velum.system.StringSet({'a'}).more(\"b\")", true},
      {"Foo = velum.system.StringSet('a')", false},
      {"Foo = velum.system.StringSet({'a'}, x)", false},
      {"Foo = velum.system.StringSet(make({'a'}))", false},
      {"Foo = velum.system.StringSet", false},
      {"Foo = velum.system .StringSet({'a'})", false},
      {"Foo = velum.system.String({'a'})", false},
      {"Foo = (velum.system.StringSet({'a'}))", false},
      {"Foo = {velum.system.StringSet({'a'})}", false},
      {"Foo = velum.system.StringSet{'a'}", false},
      {"Foo", false},
  };
  for (const auto& [declaration, expected] : rows) {
    EXPECT_EQ(propertyOf(classWithProperty(declaration)).hasStringSetDefault(), expected)
        << declaration;
  }
}

TEST(Property, ReferencesThroughDot) {
  struct Row {
    const char* methods;
    bool hasGetAccessor;
    bool isReferenced;
  };
  const Row rows[] = {
      {"", false, false},
      {"function f(o)\nx = o.Foo;\nend", false, true},
      {"function f(o)\no.Foo\nend", false, true},
      {"function f(o)\no.Foo_x\nend", false, true},
      {"function f(o)\no.Foo2 + o.Foo\nend", false, false},
      {"function f(o)\no.Food\nend", false, false},
      {"function f(o)\no.Foo\u00e9\nend", false, true},
      {"function f(o)\nFoo\nend", false, false},
      {"% see obj.Foo for more", false, true},
      {"function f(o)\n'a.Foo'\nend", false, true},
      {"function v = get.Foo(o)\nv = o.Foo;\nend", true, false},
      {"v = get.Foo(o)", true, false},
      {"function v = get.Fo(o)\nend\nfunction v = get.Food(o)\nend", false, false},
      {"function set.Foo(o, v)\nend", false, true},
  };
  for (const Row& row : rows) {
    const ModelOfText model = classWithProperty("Foo = 1", row.methods);
    EXPECT_EQ(propertyOf(model).hasGetAccessor(), row.hasGetAccessor) << row.methods;
    EXPECT_EQ(propertyOf(model).isReferencedThroughDot(), row.isReferenced) << row.methods;
  }
  const ModelOfText atTheEnd(u"classdef C\nproperties\nFoo\nend\nend % o.Foo");
  EXPECT_TRUE(propertyOf(atTheEnd).isReferencedThroughDot());
}

}  // namespace
}  // namespace soca
