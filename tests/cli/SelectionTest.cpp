// Which conversions the program makes if a person selects them, and what it lists of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/Places.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

using Json = nlohmann::json;

std::string classOf(const std::string& opening, const std::string& body) {
  return "classdef " + opening + "\n" + body + "end\n";
}

std::string method(const std::string& name, const std::string& result) {
  return "methods (Access = protected)\nfunction f = " + name + "(~, ~)\nf = " + result +
         ";\nend\nend\n";
}

// One class with conversions of all risks, and two of which one follows what becomes of the other.
void writeTree(const Workspace& space) {
  space.write("p/A.vlm",
              classOf("A < velum.System & ... why\n velum.system.mixin.CustomIcon",
                      "properties (Logical)\nX = true;\nend\n"
                      "properties (PositiveInteger)\nY = 0;\nend\nproperties (Hidden)\nend\n" +
                          method("isInputSizeLockedImpl", "true")));
  space.write("p/Base.vlm", classOf("(StrictDefaults) Base < velum.System",
                                    method("isInputComplexityLockedImpl", "true")));
  space.write("p/Heir.vlm",
              classOf("Heir < p.Base", method("isInputComplexityMutableImpl", "false")));
  space.write("p/Pair.vlm",
              classOf("Pair < velum.System",
                      "properties\nM = 'a';\nM = 'b';\nMSet = velum.system.StringSet({'a', 'b'});\n"
                      "end\n"));
}

constexpr const char* listOfTree =
    "p.A#mixins\treview\tmade\tp/A.vlm:1\n"
    "p.A#attributes/logical:X\tsafe\tmade\tp/A.vlm:4\n"
    "p.A#attributes/positive-integer:Y\tunsafe\tsoca:DefaultOutsideValidators\tp/A.vlm:7\n"
    "p.A#attributes/empty-block:1\tsafe\tmade\tp/A.vlm:9\n"
    "p.A#impl/rename-negate:isInputSizeLockedImpl\tsafe\tmade\tp/A.vlm:12\n"
    "p.Base#impl/rename-negate:isInputComplexityLockedImpl\tsafe\tmade\tp/Base.vlm:3\n"
    "p.Base#impl/delete-redundant:isInputComplexityLockedImpl\tsafe\tmade\tp/Base.vlm:3\n"
    "p.Heir#impl/delete-redundant:isInputComplexityMutableImpl\tsafe\tmade\tp/Heir.vlm:3\n"
    "p.Pair#attributes/string-set:M~1\tsafe\tmade\tp/Pair.vlm:3\n"
    "p.Pair#attributes/string-set:M~2\tsafe\tmade\tp/Pair.vlm:4\n";

// The lines of a list whose third column has the word.
std::string rowsWith(const std::string& word, const std::string& list) {
  std::string rows;
  std::istringstream lines(list);
  for (std::string line; std::getline(lines, line);) {
    if (line.find('\t' + word + '\t') != std::string::npos)
      rows += line.substr(0, line.find('\t')) + "\n";
  }
  return rows;
}

Json listOf(const Workspace& space) {
  return Json::parse(space.soca({"update", "--list", "--format", "json"}).out);
}

TEST(Selection, ListsAllConversions) {
  const Workspace space;
  writeTree(space);
  for (const char* jobs : {"1", "5"}) {
    const auto result = space.soca({"update", "--list", "-j", jobs});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, listOfTree);
    EXPECT_EQ(result.err.find("warning: the attribute"), std::string::npos) << result.err;
  }
  EXPECT_EQ(
      space.soca({"update", "--list", "--format", "json", "p.Pair"}).out,
      "{\"version\": 1,\n \"classes\": [\n  {\"class\": \"p.Pair\", \"file\": \"p/Pair.vlm\", "
      "\"sha256\": \"" +
          listOf(space).at("classes").at(3).at("sha256").get<std::string>() +
          "\",\n   \"conversions\": [\n"
          "    {\"id\":\"p.Pair#attributes/string-set:M~1\",\"risk\":\"safe\",\"line\":3,"
          "\"needs\":[\"p.Pair#attributes/string-set:M~2\"]},\n"
          "    {\"id\":\"p.Pair#attributes/string-set:M~2\",\"risk\":\"safe\",\"line\":4,"
          "\"needs\":[\"p.Pair#attributes/string-set:M~1\"]}],\n   \"leftOut\": []}]}\n");
}

TEST(Selection, TheListIsWhatAnUpdateMakes) {
  const Workspace listed;
  const Workspace updated;
  for (const Workspace* each : {&listed, &updated}) writeTree(*each);
  const auto list = listOf(listed);
  listed.write("list.json", list.dump());
  EXPECT_EQ(listed.soca({"update", "--selection", "list.json", "--write"}).exitCode, 0);
  EXPECT_EQ(updated.soca({"update", "--write"}).exitCode, 0);
  for (const char* name : {"p/A.vlm", "p/Base.vlm", "p/Heir.vlm", "p/Pair.vlm"}) {
    EXPECT_EQ(listed.read(name), updated.read(name));
  }
  // The files are no longer those that were listed.
  const auto again = listed.soca({"update", "--selection", "list.json", "--check"});
  EXPECT_EQ(again.exitCode, 0) << again.err;
}

TEST(Selection, PatternsSelect) {
  const Workspace space;
  writeTree(space);
  const struct {
    const char* shows;
    std::vector<std::string> options;
    // The members that are made, and a part of standard error.
    const char* made;
    const char* note = "";
  } rows[] = {
      {"a kind, in all classes", {"--only", "*#mixins"}, "p.A#mixins\n"},
      {"a family",
       {"--only=*.A#attributes/*"},
       "p.A#attributes/logical:X\np.A#attributes/empty-block:1\n"},
      {"several patterns",
       {"--only", "*:X", "--only", "*#mixins", "--skip", "*.A#m?xin[st]"},
       "p.A#attributes/logical:X\n"},
      {"no conversion of an earlier pass on which one rests",
       {"--only=p.Base#*", "--skip=*rename*"},
       ""},
      {"the first of two passes",
       {"--only", "p.Base#impl/rename*"},
       "p.Base#impl/rename-negate:isInputComplexityLockedImpl\n"},
      {"one that can only be made with another one", {"--only", "*:M~1"}, ""},
      {"a risk too, which stays as it is", {"--only", "*:Y"}, ""},
      {"a higher risk", {"--only", "*:Y", "--risk=unsafe"}, "p.A#attributes/positive-integer:Y\n"},
      {"kinds too", {"--only", "*.A#*", "--rules=mixins"}, "p.A#mixins\n"},
      {"a misspelt id",
       {"--only", "p.A#mixin"},
       "",
       "note: no conversion of this run matches --only 'p.A#mixin'; did you mean 'p.A#mixins'?\n"},
      {"a misspelt kind",
       {"--only", "*#mixins", "--skip=*#atributes/logical:*"},
       "p.A#mixins\n",
       "matches --skip '*#atributes/logical:*'; did you mean 'attributes/logical'?\n"},
  };
  for (const auto& [shows, options, made, note] : rows) {
    std::vector<std::string> arguments = {"update", "--list"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const auto result = space.soca(arguments);
    EXPECT_EQ(rowsWith("made", result.out), made) << shows;
    EXPECT_NE(result.err.find(note), std::string::npos) << shows << "\n" << result.err;
    EXPECT_EQ(result.err.find("note: no conversion") == std::string::npos, *note == '\0') << shows;
  }
}

// What a person can do to a listed file before it is read again.
TEST(Selection, AFileSelects) {
  const struct {
    const char* shows;
    void (*edit)(Json& list, const Workspace& space);
    std::vector<std::string> options;
    const char* made;
    std::vector<const char*> notes;
  } rows[] = {
      {"an unsafe one that is moved to the others",
       [](Json& list, const Workspace&) {
         Json& a = list["classes"][0];
         a["conversions"].swap(a["leftOut"]);
         list["classes"].erase(1);
       },
       {},
       "p.A#attributes/positive-integer:Y\n"
       "p.Pair#attributes/string-set:M~1\np.Pair#attributes/string-set:M~2\n",
       {"[soca:SuperClassGainsMethod]"}},
      {"one with a higher risk than an explicit one",
       [](Json& list, const Workspace&) { list["classes"].erase(1); },
       {"--risk=safe", "p.A"},
       "p.A#attributes/logical:X\np.A#attributes/empty-block:1\n"
       "p.A#impl/rename-negate:isInputSizeLockedImpl\n",
       {"note: 1 selected conversion is of a higher risk than --risk safe left out",
        "note: 3 conversions were selected, of 2 classes without a result in this run: p.Heir, "
        "..."}},
      {"one of two that are made together",
       [](Json& list, const Workspace&) {
         list["classes"] = Json::array({list["classes"][3]});
         list["classes"][0]["conversions"].erase(0);
       },
       {},
       "",
       {"p/Pair.vlm:4: warning: the set of property 'M' is not converted: it is only made together "
        "with 'p.Pair#attributes/string-set:M~1', which was not selected"}},
      {"a file that has changed",
       [](Json& list, const Workspace& space) {
         list["classes"].erase(3);
         list["classes"].erase(0);
         space.write("p/Base.vlm", "% new\n" + space.read("p/Base.vlm"));
       },
       {},
       "",
       {"p/Heir.vlm:3: warning: method 'isInputComplexityMutableImpl' is not deleted: the update "
        "of",
        "p/Base.vlm:4: warning: method 'isInputComplexityLockedImpl' is not renamed to "
        "'isInputComplexityMutableImpl': its file has changed since it was selected. Make",
        "warning: 'p.Base#impl/delete-redundant:isInputComplexityLockedImpl' was selected and is "
        "not found: "}},
      {"one that has become riskier than it was listed",
       [](Json& list, const Workspace& space) {
         list["classes"] = Json::array({list["classes"][0]});
         space.write("p/User.vlm", classOf("User < p.A",
                                           "methods\nfunction g(o)\no.isInputSizeLockedImpl(1);\n"
                                           "end\nend\n"));
       },
       {},
       "p.A#mixins\np.A#attributes/logical:X\np.A#attributes/empty-block:1\n",
       {"class 'p.User' refers to it"}},
      {"a conversion of a later pass without the one before it",
       [](Json& list, const Workspace&) {
         list["classes"] = Json::array({list["classes"][1]});
         list["classes"][0]["conversions"].erase(0);
       },
       {},
       "",
       {"warning: 'p.Base#impl/delete-redundant:isInputComplexityLockedImpl' was selected and is "
        "not found: the class has no such conversion"}},
      {"no classes", [](Json& list, const Workspace&) { list["classes"].clear(); }, {}, "", {}},
  };
  for (const auto& [shows, edit, options, made, notes] : rows) {
    const Workspace space;
    writeTree(space);
    Json list = listOf(space);
    edit(list, space);
    space.write("chosen.json", list.dump(1));
    std::vector<std::string> arguments = {"update", "--selection", "chosen.json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const auto result = space.soca(arguments);
    EXPECT_EQ(result.exitCode, 0) << shows;
    for (const char* note : notes) {
      EXPECT_NE(result.err.find(note), std::string::npos) << shows << "\n" << result.err;
    }
    arguments.emplace_back("--list");
    EXPECT_EQ(rowsWith("made", space.soca(arguments).out), made) << shows;
    EXPECT_EQ(result.err.find("[soca:NotSelected]"), std::string::npos) << shows << result.err;
  }
}

TEST(Selection, ProgramsSeeWhatIsNotFound) {
  const Workspace space;
  writeTree(space);
  Json list = listOf(space);
  list["classes"] = Json::array({list["classes"][0]});
  list["classes"][0]["conversions"] =
      Json::array({{{"id", "p.A#mixins"}}, {{"id", "p.A#impl/rename:x"}}});
  space.write("s.json", list.dump());
  const auto json = Json::parse(space.soca({"update", "--selection=s.json", "--format=json"}).out);
  EXPECT_EQ(json.at("notFound").at(0).at("id"), "p.A#impl/rename:x");
  EXPECT_EQ(json.at("results").at(0).at("conversions").at(0).at("id"), "p.A#mixins");
  const auto sarif =
      Json::parse(space.soca({"update", "--selection=s.json", "--format=sarif"}).out);
  EXPECT_EQ(sarif.at("runs").at(0).at("results").back().at("ruleId"), "soca:ConversionNotFound");
}

TEST(Selection, StandardInputHasOneToo) {
  const Workspace space;
  writeTree(space);
  const std::string program = programPath() + " update --stdin-path p/A.vlm - < p/A.vlm ";
  const auto list = space.run({"sh", "-c", program + "--list --format=json"});
  EXPECT_EQ(Json::parse(list.out).at("classes").at(0), listOf(space).at("classes").at(0));
  space.write("s.json", list.out);
  const auto whole = space.run({"sh", "-c", program});
  const auto chosen = space.run({"sh", "-c", program + "--selection s.json"});
  EXPECT_EQ(chosen.out, whole.out);
  EXPECT_EQ(space.run({"sh", "-c", program + "--selection s.json --skip '*'"}).out,
            space.read("p/A.vlm"));
}

TEST(Selection, WrongFilesAreErrors) {
  const Workspace space;
  writeTree(space);
  const auto classWith = [](const std::string& entry) {
    return "{\"version\": 1,\n \"classes\": [\n  {\"class\": \"p.A\", \"sha256\": \"0\",\n" +
           entry + "}]}";
  };
  const struct {
    const char* shows;
    std::string text;
    const char* error;
  } rows[] = {
      {"no JSON", "{\"version\": 1,\n oops}", "line 2, column 2: this is no valid JSON"},
      {"an empty file", "", "line 1, column 1: this is no valid JSON"},
      {"much that is no JSON", std::string(10'000'000, '['), "line 1: expected an object"},
      {"a huge number", "{\"version\": 1e999}", "line 1: a number is too large"},
      {"a list", "[]", "line 1: expected an object, and not a list"},
      {"no version", "{\"classes\": []}", "the \"version\" is missing, which is 1"},
      {"a later version", "{\"version\": 2}", "version 2 is unknown: this program reads version 1"},
      {"a text as the version", "{\"version\": \"1\"}",
       "\"version\": expected a whole number, and not a string"},
      {"an unknown key", "{\"version\": 1, \"clases\": []}",
       "unknown key \"clases\"; known are: version, classes"},
      {"a key twice",
       "{\"version\": 1,\n\"classes\": [\n{\"class\": \"p.A\", \"class\": \"p.B\"}]}",
       "line 3: \"class\" is there twice"},
      {"a class without a name", "{\"version\": 1,\n\"classes\": [\n{}]}",
       "line 3: a class lacks its name"},
      {"a class without a digest", "{\"version\": 1,\n\"classes\": [\n{\"class\": \"p.A\"}]}",
       "line 3: class \"p.A\" lacks the \"sha256\""},
      {"a class twice",
       "{\"version\": 1, \"classes\": [\n{\"class\": \"p.A\", \"sha256\": \"0\"},\n"
       "{\"class\": \"p.A\", \"sha256\": \"0\"}]}",
       "line 3: class \"p.A\" is listed twice, first up to line 2"},
      {"a text as a conversion", classWith("\"conversions\": [\n\"p.A#mixins\"]"),
       "line 5: expected an object, and not a string"},
      {"a conversion without an id", classWith("\"conversions\": [\n{\"line\": 3}]"),
       "line 5: a conversion lacks its \"id\""},
      {"the id of another class", classWith("\"conversions\": [\n{\"id\": \"p.B#mixins\"}]"),
       "line 5: \"p.B#mixins\" is no id of class \"p.A\""},
      {"an id twice",
       classWith("\"conversions\": [\n{\"id\": \"p.A#mixins\"},\n{\"id\": \"p.A#mixins\"}]"),
       "line 6: \"p.A#mixins\" is chosen twice, first in line 5"},
      {"an unknown risk",
       classWith("\"conversions\": [\n{\"id\": \"p.A#mixins\", \"risk\": \"high\"}]"),
       "line 5: unknown risk \"high\"; known are: safe, review, unsafe"},
  };
  for (const auto& [shows, text, error] : rows) {
    space.write("s.json", text);
    const auto result = space.soca({"update", "--write", "--selection", "s.json"});
    EXPECT_EQ(result.exitCode, 2) << shows;
    EXPECT_NE(result.err.find(std::string("the selection 's.json' is wrong: ")), std::string::npos)
        << shows << result.err;
    EXPECT_NE(result.err.find(error), std::string::npos) << shows << "\n" << result.err;
  }
}

// The part of the language of schemas that the project's schemas use; any other word is an error.
class SchemaCheck {
 public:
  explicit SchemaCheck(const Json& schema) : schema_(schema) {}

  // Returns the place of the first value that the schema does not allow; empty if there is none.
  std::string check(const Json& value) const { return check(value, schema_, ""); }

 private:
  std::string check(const Json& value, const Json& schema, const std::string& place) const {
    for (const auto& [word, rule] : schema.items()) {
      if (auto found = check(value, word, rule, schema, place); !found.empty()) return found;
    }
    return {};
  }

  std::string check(const Json& value, const std::string& word, const Json& rule,
                    const Json& schema, const std::string& place) const {
    const std::string fault = place + ": " + word;
    if (word == "$ref") {
      return check(value, schema_.at(Json::json_pointer(rule.get<std::string>().substr(1))), place);
    }
    if (word == "type") return isOfType(value, rule) ? "" : fault;
    if (word == "const") return value == rule ? "" : fault;
    if (word == "enum") return isIn(value, rule) ? "" : fault;
    if (word == "required") {
      for (const std::string key : rule) {
        if (!value.contains(key)) return fault + " " + key;
      }
      return {};
    }
    if (word == "items") {
      for (std::size_t i = 0; i < value.size(); ++i) {
        if (auto found = check(value[i], rule, place + "/" + std::to_string(i)); !found.empty())
          return found;
      }
      return {};
    }
    if (word == "properties") return checkKeys(value, rule, schema, place);
    const bool isComment = word == "$schema" || word == "title" || word == "description" ||
                           word == "$defs" || word == "additionalProperties";
    return isComment ? "" : fault + " is unknown";
  }

  std::string checkKeys(const Json& value, const Json& rule, const Json& schema,
                        const std::string& place) const {
    for (const auto& [key, item] : value.items()) {
      const std::string at = place + "/" + key;
      if (!rule.contains(key)) {
        if (schema.value("additionalProperties", true)) continue;
        return at + " is not allowed";
      }
      if (auto found = check(item, rule.at(key), at); !found.empty()) return found;
    }
    return {};
  }

  static bool isIn(const Json& value, const Json& list) {
    return std::ranges::find(list, value) != list.end();
  }

  static bool isOfType(const Json& value, const std::string& type) {
    return (type == "object" && value.is_object()) || (type == "array" && value.is_array()) ||
           (type == "string" && value.is_string()) ||
           (type == "integer" && value.is_number_integer());
  }

  const Json& schema_;
};

TEST(Selection, TheListHasTheFormOfItsSchema) {
  const Workspace space;
  writeTree(space);
  std::ifstream file(projectPath("docs/schemas/selection.json"));
  const Json schema = Json::parse(file);
  Json list = listOf(space);
  EXPECT_EQ(SchemaCheck(schema).check(list), "");
  list["classes"][0]["conversions"][0]["why"] = "";
  EXPECT_EQ(SchemaCheck(schema).check(list), "/classes/0/conversions/0/why is not allowed");
}

}  // namespace
}  // namespace soca::testing
