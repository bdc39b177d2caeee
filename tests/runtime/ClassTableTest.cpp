// Class tables: their contents, and the texts of their errors.
#include <gtest/gtest.h>

#include "platform/runtime/ClassTable.h"

namespace sotarn {
namespace {

TEST(ClassTable, HoldsFactsOfClasses) {
  const ClassTable table = parseClassTable(R"({"classes": {"a.B": {
      "superclasses": ["c.D", "E"], "strictDefaults": true, "methods": ["m"],
      "properties": {"Mode": {"abstract": true, "dependent": false, "constrainedSet": {
          "kind": 7, "valueType": 2, "setProperty": "Choices", "values": ["a", "\u00e4"]}},
                     "Other": {"constrainedSet": {}}}}, "F": {}}})");
  ASSERT_EQ(table.size(), 2U);
  const ClassTableEntry& entry = table.at("a.B");
  EXPECT_EQ(entry.superClasses, (std::vector<std::string>{"c.D", "E"}));
  EXPECT_EQ(entry.strictDefaults, true);
  EXPECT_EQ(entry.methods, std::vector<std::string>{"m"});
  const PropertyDescription& mode = entry.properties.at("Mode");
  EXPECT_EQ(mode.isAbstract, true);
  EXPECT_EQ(mode.isDependent, false);
  EXPECT_EQ(mode.constrainedSet->kind, 7U);
  EXPECT_EQ(mode.constrainedSet->valueType, 2U);
  EXPECT_EQ(mode.constrainedSet->setPropertyName, u"Choices");
  EXPECT_EQ(mode.constrainedSet->values, (std::vector<fl::ustring>{u"a", u"\u00E4"}));
  EXPECT_EQ(entry.properties.at("Other").constrainedSet->setPropertyName, u"OtherSet");
  EXPECT_FALSE(table.at("F").superClasses.has_value());
  EXPECT_TRUE(parseClassTable("{}").empty());
}

TEST(ClassTable, ErrorsNameThePlace) {
  struct Case {
    const char* json;
    const char* message;
  };
  constexpr Case cases[] = {
      {"", "no valid JSON at line 1, column 1"},
      {"{\"classes\":\n {},}", "no valid JSON at line 2, column 5"},
      {R"({"classes": 1e999})", "a number is too large"},
      {"[]", "expected an object"},
      {R"({"class": {}})", "unknown key \"class\""},
      {R"({"classes": []})", "classes: expected an object"},
      {R"({"classes": {"a.B": {"superClasses": []}}})",
       "classes[\"a.B\"]: unknown key \"superClasses\""},
      {R"({"classes": {"a.B": {"superclasses": ["x", 1]}}})",
       "classes[\"a.B\"].superclasses[1]: expected a string"},
      {R"({"classes": {"B": {"strictDefaults": 1}}})",
       "classes[\"B\"].strictDefaults: expected true or false"},
      {R"({"classes": {"B": {"methods": "m"}}})",
       "classes[\"B\"].methods: expected a list of strings"},
      {R"({"classes": {"B": {"properties": {"P": {"constrainedSet": {"kind": 4294967296}}}}}})",
       "classes[\"B\"].properties[\"P\"].constrainedSet.kind: expected a whole number from 0 to "
       "4294967295"},
      {R"({"classes": {"B": {"properties": {"P": {"constrainedSet": {"kind": -1}}}}}})",
       "classes[\"B\"].properties[\"P\"].constrainedSet.kind: expected a whole number from 0 to "
       "4294967295"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.json);
    try {
      parseClassTable(c.json);
      ADD_FAILURE() << "no error";
    } catch (const ClassTableError& error) {
      EXPECT_STREQ(error.what(), c.message);
    }
  }
}

}  // namespace
}  // namespace sotarn
