#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mutants/Copy.h"
#include "mutants/Finder.h"

namespace mutants {
namespace {

std::string mistakesIn(const std::string& text) {
  std::string all;
  for (const Mistake& mistake : findMistakes("a.cpp", text)) {
    all += std::string(nameOf(mistake.kind)) + ": " + mistake.original + " -> " +
           mistake.replacement + "\n";
  }
  return all;
}

struct Case {
  const char* description;
  const char* text;
  const char* mistakes;
};

constexpr Case cases[] = {
    {"an operator and its operands", "{ x = f(a) + 'b' < c[i] && y; }",
     "statement: x = f(a) + 'b' < c[i] && y; -> nothing\n"
     "constant: 'b' -> 'b' + 1\n"
     "comparison: f(a) + 'b' < c[i] -> f(a) + 'b' <= c[i]\n"
     "condition: f(a) + 'b' < c[i] -> true\n"
     "condition: y -> true\n"},
    {"brackets of templates and signs of references are no operators",
     "std::vector<int> f(const A& a, B&& b);", ""},
    {"conditions and jumps", "if (isOpen(a)) return;\nwhile (b || c) break;",
     "condition: isOpen(a) -> false\n"
     "condition: isOpen(a) -> true\n"
     "statement: return; -> nothing\n"
     "condition: b -> false\n"
     "condition: c -> false\n"
     "statement: break; -> nothing\n"},
    {"a condition that declares a name", "if (const auto a = b) c.d(e);",
     "statement: c.d(e); -> nothing\n"},
    {"arguments, and not parameters", "int f(int a, int b) { return g(c, h->i(), [] {}); }", ""},
    {"neighbours among arguments", "return g(\"c\", h->i());",
     "arguments: \"c\", h->i() -> h->i(), \"c\"\n"
     "constant: \"c\" -> \"x\"\n"},
    {"constants, except those that the compiler needs",
     "constexpr int most = 7;\nint f(int a) { return true ? most : get<1>(a); }",
     "constant: true -> false\n"
     "constant: most -> most + 1\n"},
    {"comments, texts and directives", "#define A 1\n// 2\nauto a = R\"(3 < 4)\" /* 5 */;", ""},
};

TEST(Mutants, AreFoundInSources) {
  for (const Case& each : cases)
    EXPECT_EQ(mistakesIn(each.text), each.mistakes) << each.description;
}

TEST(Mutants, AreBuiltInAroundTheOriginal) {
  const std::string text = "{ f(a, b < 1); }\n";
  auto mistakes = findMistakes("a.cpp", text);
  for (unsigned i = 0; i < mistakes.size(); ++i) mistakes[i].number = i + 1;
  EXPECT_EQ(mutate(text, mistakes, "Switch.h"),
            "#include \"Switch.h\"\n#line 1\n"
            "{ if (::mutants::isOn(1)) {} else f((::mutants::isOn(2) ? (b < 1) : (a)), "
            "(::mutants::isOn(2) ? (a) : ((::mutants::isOn(3) ? (b <= 1) : (b < "
            "(::mutants::isOn(4) ? ::mutants::next(1) : (1))))))); }\n");
}

}  // namespace
}  // namespace mutants
