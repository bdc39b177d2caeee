// Properties blocks and methods blocks.
#include "model/AttributeText.h"

#include <gtest/gtest.h>
#include "model/MethodsBlock.h"
#include "model/PropertiesBlock.h"
#include "tests/model/ModelOfText.h"

namespace soca {
namespace {

using testing::columnsOf;
using testing::ModelOfText;

// A class with one block, on line 1 from column 2, with the opening line `opening`.
ModelOfText classWithBlock(const std::string& opening) {
  return ModelOfText(fl::i18n::to_ustring("classdef C\n  " + opening + "\n  end\nend\n"));
}

// An attribute as "~name=value".
std::string described(const std::vector<AttributeText>& attributes) {
  fl::ustring text;
  for (const AttributeText& attribute : attributes) {
    if (!text.empty()) text += u' ';
    if (attribute.negated) text += u'~';
    text += attribute.name;
    if (attribute.value) text += u'=' + *attribute.value;
  }
  return fl::i18n::to_string(text);
}

struct BlockCase {
  const char* opening;
  std::uint64_t logicalAttributes;
  int getAccess;
  int setAccess;
  const char* attributes;
};

constexpr std::uint64_t bit(unsigned number) { return std::uint64_t{1} << number; }

const BlockCase propertiesCases[] = {
    {"properties", 0, 0, 0, ""},
    {"properties ()", 0, 0, 0, ""},
    {"properties (Nontunable, ~Hidden)", bit(11), 0, 0, "Nontunable ~Hidden"},
    {"properties (Hidden, ~Hidden)", 0, 0, 0, "Hidden ~Hidden"},
    {"properties (Hidden=false, Hidden)", bit(5), 0, 0, "Hidden=false Hidden"},
    {"properties (AbortSet = true, Logical = x)", bit(0), 0, 0, "AbortSet=true Logical=x"},
    {"properties (Logical = (true))", 0, 0, 0, "Logical=(true)"},
    {"properties (ControlledDynamicEnumerations, Constant=1)", bit(19), 0, 0,
     "ControlledDynamicEnumerations Constant=1"},
    {"properties (Access = private)", 0, 2, 2, "Access=private"},
    {"properties (Access = 'private')", 0, 2, 2, "Access='private'"},
    {"properties (SetAccess=immutable,GetAccess=private)", 0, 2, 3,
     "SetAccess=immutable GetAccess=private"},
    {"properties (Access='immutable', GetAccess='protected')", 0, 1, 3,
     "Access='immutable' GetAccess='protected'"},
    {"properties (Access = protected, Access = 'Public')", 0, 0, 0,
     "Access=protected Access='Public'"},
    {"properties (Access = ?a.b)", 0, 4, 4, "Access=?a.b"},
    {"properties (SetAccess = \"private\")", 0, 0, 4, "SetAccess=\"private\""},
    {"properties (SetAccess = {?a, ?b})", 0, 0, 4, "SetAccess={?a, ?b}"},
    {"properties (Access)", bit(20), 0, 0, "Access"},
    {"properties (~SetAccess, GetAccess = true)", bit(21), 0, 0, "~SetAccess GetAccess=true"},
    {"properties (Description = 'x', logical, Unknown)", 0, 0, 0,
     "Description='x' logical Unknown"},
};

TEST(PropertiesBlock, Attributes) {
  for (const BlockCase& testCase : propertiesCases) {
    SCOPED_TRACE(testCase.opening);
    const ModelOfText model = classWithBlock(testCase.opening);
    const PropertiesBlock& block = model.definition->getPropertiesBlocks()[0];
    EXPECT_EQ(block.getLogicalAttributes(), testCase.logicalAttributes);
    EXPECT_EQ(static_cast<int>(block.getAccess().getAccess), testCase.getAccess);
    EXPECT_EQ(static_cast<int>(block.getAccess().setAccess), testCase.setAccess);
    EXPECT_EQ(described(block.getAttributes()), testCase.attributes);
    EXPECT_EQ(block.getNumberOfAttributes(), block.getAttributes().size());
    EXPECT_TRUE(block.hasSameLogicalAttributes(testCase.logicalAttributes));
    EXPECT_FALSE(block.hasSameLogicalAttributes(testCase.logicalAttributes ^ 1U));
  }
}

TEST(MethodsBlock, Attributes) {
  const BlockCase cases[] = {
      {"methods", 0, 0, 0, ""},
      {"methods (Static, Access = private)", bit(3), 2, 0, "Static Access=private"},
      {"methods (Access = 'protected')", 0, 1, 0, "Access='protected'"},
      {"methods (Access=protected, Access = immutable)", 0, 0, 0,
       "Access=protected Access=immutable"},
      {"methods (Access = {?a})", 0, 3, 0, "Access={?a}"},
      {"methods (Hidden = private, Sealed, ~Sealed, Abstract)", bit(0), 0, 0,
       "Hidden=private Sealed ~Sealed Abstract"},
      {"methods (Access, Test)", bit(4), 0, 0, "Access Test"},
  };
  for (const BlockCase& testCase : cases) {
    SCOPED_TRACE(testCase.opening);
    const ModelOfText model = classWithBlock(testCase.opening);
    const MethodsBlock& block = model.definition->getMethodsBlocks()[0];
    EXPECT_EQ(block.getLogicalAttributes(), testCase.logicalAttributes);
    EXPECT_EQ(static_cast<int>(block.getAccess()), testCase.getAccess);
    EXPECT_EQ(described(block.getAttributes()), testCase.attributes);
    EXPECT_EQ(block.getNumberOfAttributes(), block.getAttributes().size());
    EXPECT_TRUE(block.hasSameLogicalAttributes(testCase.logicalAttributes));
  }
}

TEST(Blocks, LogicalAttributesAsListed) {
  struct Row {
    const char* attributes;
    bool has;
    bool isTrue;
    bool isFalse;
  };
  const Row rows[] = {
      {"(Hidden)", true, true, false},          {"(~Hidden)", true, false, true},
      {"(Hidden, ~Hidden)", true, true, false}, {"(Hidden = x, Hidden)", false, false, false},
      {"(Hidden = false)", true, false, true},  {"(Abstract)", false, false, false},
      {"(hidden)", false, false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.attributes);
    const ModelOfText properties = classWithBlock(std::string("properties ") + row.attributes);
    const PropertiesBlock& block = properties.definition->getPropertiesBlocks()[0];
    EXPECT_EQ(block.hasLogicalAttribute(PropertyAttributeType::Hidden), row.has);
    EXPECT_EQ(block.hasLogicalAttributeValue(PropertyAttributeType::Hidden, true), row.isTrue);
    EXPECT_EQ(block.hasLogicalAttributeValue(PropertyAttributeType::Hidden, false), row.isFalse);
    const ModelOfText methods = classWithBlock(std::string("methods ") + row.attributes);
    const MethodsBlock& twin = methods.definition->getMethodsBlocks()[0];
    EXPECT_EQ(twin.hasLogicalAttribute(MethodAttributeType::Hidden), row.has);
    EXPECT_EQ(twin.hasLogicalAttributeValue(MethodAttributeType::Hidden, true), row.isTrue);
    EXPECT_EQ(twin.hasLogicalAttributeValue(MethodAttributeType::Hidden, false), row.isFalse);
  }
}

TEST(Blocks, Extents) {
  struct Row {
    const char* opening;
    const char* openingColumns;
    const char* attributesColumns;
  };
  const Row propertiesRows[] = {
      {"properties", "2-12", "12-12"},
      {"properties ()", "2-12", "12-12"},
      {"properties  (Hidden , Access = f(1) )", "2-39", "14-39"},
  };
  for (const Row& row : propertiesRows) {
    const ModelOfText model = classWithBlock(row.opening);
    const PropertiesBlock& block = model.definition->getPropertiesBlocks()[0];
    EXPECT_EQ(columnsOf(block.getOpeningExtent()), row.openingColumns) << row.opening;
    EXPECT_EQ(columnsOf(block.getAttributesExtent()), row.attributesColumns) << row.opening;
    EXPECT_EQ(block.getClosingExtent(), (Extent{{2, 2}, {2, 5}}));
    EXPECT_EQ(block.getFullExtent(), (Extent{{1, 2}, {2, 5}}));
  }
  const Row methodsRows[] = {{"methods", "2-9", "9-9"}, {"methods(Static)", "2-17", "9-17"}};
  for (const Row& row : methodsRows) {
    const ModelOfText model = classWithBlock(row.opening);
    const MethodsBlock& block = model.definition->getMethodsBlocks()[0];
    EXPECT_EQ(columnsOf(block.getOpeningExtent()), row.openingColumns) << row.opening;
    EXPECT_EQ(columnsOf(block.getAttributesExtent()), row.attributesColumns) << row.opening;
    EXPECT_EQ(block.getClosingExtent(), (Extent{{2, 2}, {2, 5}}));
    EXPECT_EQ(block.getFullExtent(), (Extent{{1, 2}, {2, 5}}));
  }
}

TEST(Blocks, MovingMovesTheEntries) {
  ModelOfText model(
      u"classdef C\nproperties (Hidden)\nA\nB\nend\nmethods (Access = private)\nf(o)\nend\n"
      u"properties\nend\nmethods\nend\nend\n");
  const ClassContext context{model.analysis.get(), &model.metaClass};
  const auto propertiesNodes = model.analysis->getClassdef()->getPropertiesBlocks();
  const auto methodsNodes = model.analysis->getClassdef()->getMethodsBlocks();

  PropertiesBlock properties(propertiesNodes[0], &context);
  PropertiesBlock movedProperties(std::move(properties));
  EXPECT_EQ(&movedProperties.getProperties()[1].getBlock(), &movedProperties);
  PropertiesBlock assignedProperties(propertiesNodes[1], &context);
  assignedProperties = std::move(movedProperties);
  EXPECT_EQ(assignedProperties.getNumberOfProperties(), 2U);
  EXPECT_EQ(&assignedProperties.getProperties()[0].getBlock(), &assignedProperties);
  EXPECT_EQ(assignedProperties.getLogicalAttributes(), bit(5));

  MethodsBlock methods(methodsNodes[0], &context);
  MethodsBlock movedMethods(std::move(methods));
  EXPECT_EQ(&movedMethods.getMethods()[0].getBlock(), &movedMethods);
  MethodsBlock assignedMethods(methodsNodes[1], &context);
  assignedMethods = std::move(movedMethods);
  EXPECT_EQ(&assignedMethods.getMethods()[0].getBlock(), &assignedMethods);
  EXPECT_EQ(assignedMethods.getAccess(), MethodAccessType::privateAccess);
}

}  // namespace
}  // namespace soca
