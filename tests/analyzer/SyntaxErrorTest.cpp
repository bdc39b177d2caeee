// Texts with errors: the place of each, the expected and the found text.
#include <gtest/gtest.h>

#include "platform/analyzer/Analyzer.h"
#include "tests/analyzer/TreeText.h"

namespace ca {
namespace {

struct Case {
  const char* shows;
  const char* text;
  const char* errors;
};

constexpr Case cases[] = {
    {"elements with nothing between", "x = [a{1}b]",
     "1:10: expected a blank, `,`, `;` or the closing bracket behind the element, found `b`"},
    {"two commas between elements", "x = [a, , b]",
     "1:11: expected an element between two commas, found `b`"},
    {"an index after a transpose", "y = x'(1)",
     "1:7: expected a line end, `;` or `,` behind the statement, found `(`"},
    {"a field after a blank in a list", "x = [c .d]", "1:8: expected an expression, found `.`"},
    {"blanks after a point in a list", "x = [a. b]\nx = [a. (b)]\nx = {@a. b}\nx = {@a. (b)}",
     "1:9: expected the name of a field behind `.`, found `b`\n"
     "2:9: expected the name of a field behind `.`, found `(`\n"
     "3:10: expected a name behind `.`, found `b`\n"
     "4:10: expected the name of a field behind `.`, found `(`"},
    {"several bad targets, each reported", "[a+1, b, 2] = f; a' = 3; [] = g",
     "1:2: expected a name with or without indices in front of `=`, found `a+1`\n"
     "1:10: expected a name with or without indices in front of `=`, found `2`\n"
     "1:18: expected a name with or without indices in front of `=`, found `a'`\n"
     "1:26: expected a name with or without indices in front of `=`, found `[]`"},
    {"numbers out of range, and numbers before letters",
     "x = 0x1FFu8; y = 0x10000000000000000\nz = [12ab 3]",
     "1:5: expected a number that fits its type, found `0x1FFu8`\n"
     "1:18: expected a number that fits its type, found `0x10000000000000000`\n"
     "2:8: expected an operator or a blank behind the number, found `ab`"},
    {"an unclosed literal after another error", "x = (;\ny = 'abc",
     "1:6: expected an expression, found `;`\n"
     "2:5: expected `'` to close the character literal, found end of line"},
    {"unclosed literals end with the line", "x = 'a\ny = \"b\nz = 1",
     "1:5: expected `'` to close the character literal, found end of line\n"
     "2:5: expected `\"` to close the string literal, found end of line"},
    {"an unclosed block comment", "x = 1\n%{\ny",
     "2:1: expected `%}` to close the block comment, found end of file"},
    {"characters that begin no token", "x = #3; y = 2\nz = _a",
     "1:5: expected an expression, found the character `#`, which begins nothing\n"
     "2:5: expected an expression, found the character `_`, which begins nothing"},
    {"a parenthesis over a line end", "f(a\nx = 1",
     "1:4: expected `)` to close `(`, found end of line"},
    {"a list that is never closed ends at the next function", "x = {1, 2\nfunction f\nend",
     "2:1: expected an expression, found `function`"},
    {"a superclass call without arguments", "x = step@pkg.Base;",
     "1:18: expected `(` behind the superclass of a superclass call, found `;`"},
    {"an empty argument", "f(a,)", "1:5: expected an expression, found `)`"},
    {"end and colons outside of an index", "if a\nx = {end};\nend\ny = {:}",
     "2:6: expected an expression, found `end`\n4:6: expected an expression, found `:`"},
    {"`else` of a statement further out needs a separator",
     "if a, for k = b, x = 1 else y = 1, end, end",
     "1:24: expected a line end, `;` or `,` behind the statement, found `else`\n"
     "1:29: expected a line end, `;` or `,` behind the statement, found `y`"},
    {"stray keywords with their operands", "else\ncatch x\ncase 1\nend",
     "1:1: expected a statement, found `else`\n2:1: expected a statement, found `catch`\n"
     "3:1: expected a statement, found `case`\n4:1: expected a statement, found `end`"},
    {"names after a point are no keywords", "x = 3 s.end\ny = # s.if\nz = [1 # s.for];",
     "1:7: expected a line end, `;` or `,` behind the statement, found `s`\n"
     "2:5: expected an expression, found the character `#`, which begins nothing\n"
     "3:8: expected an expression, found the character `#`, which begins nothing"},
    {"a bracket that is closed on the next line", "x = (a\n)\ny = c{1\n}; z = 2",
     "1:7: expected `)` to close `(`, found end of line\n"
     "3:8: expected `}` to close `{`, found end of line"},
    {"targets that are calls of a superclass", "[a@B(1)] = f\nfor a@B(1) = 1, end",
     "1:2: expected a name with or without indices in front of `=`, found `a@B(1)`\n"
     "2:5: expected a name with or without indices in front of `=`, found `a@B(1)`"},
    {"a colon that is not alone", "f(:')", "1:4: expected `)` to close `(`, found `'`"},
    {"keywords as a superclass", "x = a@end(1)",
     "1:7: expected the name of a superclass behind `@`, found `end`"},
    {"numbers that are too large", "x = [1e400 1e-400 0.5e400 2e308i]",
     "1:6: expected a number that fits its type, found `1e400`\n"
     "1:19: expected a number that fits its type, found `0.5e400`\n"
     "1:27: expected a number that fits its type, found `2e308i`"},
    {"an unfinished suffix at the end of the text", "x = 0x1u",
     "1:8: expected an operator or a blank behind the number, found `u`"},
    {"errors in functions without end", "function f\nx = 3 4\nfunction g\n",
     "2:7: expected a line end, `;` or `,` behind the statement, found `4`"},
    {"an unclosed block comment after another error", "x = (1\n%{\ny",
     "1:7: expected `)` to close `(`, found end of line\n"
     "2:1: expected `%}` to close the block comment, found end of file"},
    {"dynamic fields in declarations", "classdef A\nproperties\nx {a.(b)}\nend\nend",
     "3:6: expected the name of a field behind `.`, found `(`"},
    {"statements in a class body", "classdef A\nif x\ny = 1;\nend\nproperties\nz\nend\nend",
     "2:1: expected `properties`, `methods`, `events`, `enumeration` or `end`, found `if`"},
    {"unclosed statements at the end", "if x\nwhile y\n",
     "3:1: expected `end` to close `while` (opened at line 2), found end of file"},
    {"a declaration without its terminator", "classdef A\nproperties A = 1 end\nend",
     "2:18: expected a line end, `;` or `,` behind the declaration, found `end`"},
    {"text after a declaration",
     "classdef A\nproperties\nx = 1 2\ny 3\nz = 1; w double double\nend\nend",
     "3:7: expected a line end, `;` or `,` behind the declaration, found `2`\n"
     "4:3: expected a line end, `;` or `,` behind the declaration, found `3`\n"
     "5:17: expected a line end, `;` or `,` behind the declaration, found `double`"},
    {"invalid sizes", "classdef A\nproperties\nx (1.5, 2., :, a)\ny () double\nend\nend",
     "3:4: expected a whole number or `:` as a size, found `1.5`\n"
     "3:9: expected a whole number or `:` as a size, found `2.`\n"
     "3:16: expected a whole number or `:` as a size, found `a`\n"
     "4:4: expected a whole number or `:` as a size, found `)`"},
    {"attributes", "classdef A\nproperties (~X = 3)\nend\nproperties (A = 1,)\nend\nend",
     "2:16: expected `,` or `)` behind an attribute with `~`, which has no value, found `=`\n"
     "4:19: expected the name of an attribute, found `)`"},
    {"two methods on a line", "classdef A\nmethods\nfunction f\nend function g\nend\nend\nend",
     "4:5: expected a line end, `;` or `,` behind the method, found `function`"},
    {"text after a signature", "classdef A\nmethods\nf(x) y\nend\nend",
     "3:6: expected a line end, `;` or `,` behind the signature, found `y`"},
    {"a dotted class name", "classdef A.b\nend",
     "1:11: expected `<` or the first block behind the name of the class, found `.`"},
    {"statements before the class", "x = 1\nclassdef A\nend",
     "2:1: expected only blank lines and comments in front of a class, found `classdef` behind "
     "something else"},
    {"statements after the class", "classdef A\nend\nx = 3",
     "3:1: expected a function or the end of the file behind the class, found `x`"},
    {"a class in the middle of a line", "function f(), classdef A",
     "1:15: expected a statement, found `classdef`\n"
     "1:24: expected a line end, `;` or `,` behind the statement, found `A`"},
    {"a function outside of methods", "classdef A\nfunction f\nend\nend",
     "2:1: expected a block or `end`, found `function` outside of a `methods` block"},
    {"function heads", "function f(x, \nend\nfunction [a, = g\nend\nfunction 3\nend",
     "1:15: expected the name of an input or `~`, found end of line\n"
     "3:14: expected the name of an output, found `=`\n"
     "5:10: expected the name of the function, found `3`"},
};

TEST(SyntaxError, IsReportedOnceWithItsPlace) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.shows);
    EXPECT_EQ(errorText(*analyzeText(fl::i18n::to_ustring(c.text))), c.errors);
  }
}

TEST(SyntaxError, IsReportedForNulsAndLoneSurrogatesAnywhere) {
  using namespace std::string_literals;
  fl::ustring text = u"% a\0\nx = '\0'; y = "s;
  text += char16_t{0xD800};
  EXPECT_EQ(errorText(*analyzeText(text)),
            "1:4: expected text, found the character U+0000\n"
            "2:6: expected text, found the character U+0000\n"
            "2:14: expected an expression, found half of a surrogate pair (U+D800)");
}

TEST(SyntaxError, ShowsWholeCharactersAndNoControls) {
  const fl::ustring longest(38, u'a');
  EXPECT_EQ(errorText(*analyzeText(u"x = 1 " + longest + u"\xD835\xDC9C\xD835\xDC9C")),
            "1:7: expected a line end, `;` or `,` behind the statement, found `" +
                std::string(38, 'a') + "\xF0\x9D\x92\x9C...`");
  EXPECT_EQ(errorText(*analyzeText(u"x = 1 " + longest + u"a\xD835\xDC9C")),
            "1:7: expected a line end, `;` or `,` behind the statement, found `" +
                std::string(39, 'a') + "...`");
  EXPECT_EQ(errorText(*analyzeText(u"[1 '\t\x9F\xA0'] = f")),
            "1:2: expected a name with or without indices in front of `=`, found `1`\n"
            "1:4: expected a name with or without indices in front of `=`, found `'  \xC2\xA0'`");
}

TEST(SyntaxError, InTheClassLineKeepsNameAndSuperclasses) {
  constexpr const char16_t* texts[] = {
      u"classdef (A,) C < a.B & D\nend",     u"classdef (A B = 'x)') C < a.B & D\nend",
      u"classdef (~A = 3) C < a.B & D\nend", u"classdef (A = ) C < a.B & D\nend",
      u"classdef C.E < a.B & D\nend",        u"if x\nclassdef C < a.B & D\nend\nend",
      u"classdef (A = (1 C < a.B & D\nend",  u"classdef (A = {1\n2}, ) C < a.B & D\nend",
      u"classdef (A = [) C < a.B & D\nend",
  };
  for (const char16_t* text : texts) {
    const auto analysis = analyzeText(text);
    EXPECT_TRUE(analysis->hasSyntaxError());
    ASSERT_NE(analysis->getClassdef(), nullptr) << fl::i18n::to_string(text);
    const std::string tree = treeText(*analysis, *analysis->getClassdef());
    EXPECT_NE(tree.find("C a.B D"), std::string::npos) << tree;
  }
}

TEST(SyntaxError, KeepsTheRestOfTheClass) {
  const auto analysis = analyzeText(
      u"classdef A < b.C &\n"
      u"properties (Access = )\nx = (1 +\ny = 2\nend\n"
      u"methods\nfunction f(\nif x(\nb\nend\nend\nr = g(a)\nend\n");
  EXPECT_EQ(treeText(*analysis),
            "Classdef(A b.C PropertiesBlockNode(PropertyNode(x Parenthesized(BinaryOperation(1 ))) "
            "PropertyNode(y 2) Attribute(Access )) MethodsBlockNode(FunctionDefinition(f "
            "IfStatement(CallOrIndex(x ) b;)) FunctionDeclaration(g a r)))");
  EXPECT_EQ(analysis->diagnostics().size(), 6U);
}

}  // namespace
}  // namespace ca
