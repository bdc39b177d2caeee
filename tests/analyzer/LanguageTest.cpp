// Texts without errors, and their trees.
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <variant>

#include <fmt/format.h>

#include "platform/analyzer/Analyzer.h"
#include "tests/analyzer/TreeText.h"

namespace ca {
namespace {

struct Case {
  const char* shows;
  const char* text;
  const char* tree;
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.shows; }

class Language : public testing::TestWithParam<Case> {};

TEST_P(Language, HasThisTree) {
  const auto analysis = analyzeText(fl::i18n::to_ustring(GetParam().text));
  EXPECT_EQ(errorText(*analysis), "");
  EXPECT_EQ(treeText(*analysis), GetParam().tree);
}

constexpr Case operators[] = {
    {"powers bind before products, products before sums", "x = a + b * c ^ d'",
     "SimpleAssignment(x BinaryOperation(a BinaryOperation(b UnaryOperation(BinaryOperation(c "
     "d)))))"},
    {"a sign before a power and inside it", "-a^-b",
     "UnaryOperation(BinaryOperation(a UnaryOperation(b)));"},
    {"operators group to the left", "x=a-b-c",
     "SimpleAssignment(x BinaryOperation(BinaryOperation(a b) c))"},
    {"from the lowest to the highest precedence", "x = a||b&&c|d&e<f:g+h*i",
     "SimpleAssignment(x BinaryOperation(a BinaryOperation(b BinaryOperation(c BinaryOperation(d "
     "BinaryOperation(e Range(f BinaryOperation(g BinaryOperation(h i)))))))))"},
    {"ranges have two or three parts", "x = [a:b, a:b:c, a:b:c:d]",
     "SimpleAssignment(x MatrixLiteral(ListRow(Range(a b) Range(a b c) Range(Range(a b c) d))))"},
    {"two signs are two operators", "x=a++b",
     "SimpleAssignment(x BinaryOperation(a UnaryOperation(b)))"},
    {"a transpose, also after a blank", "x = a ' + b.' + 'c'",
     "SimpleAssignment(x BinaryOperation(BinaryOperation(UnaryOperation(a) UnaryOperation(b)) "
     "'c'))"},
    {"a quote opens a literal in place of an operand", "x = @(a)'b'",
     "SimpleAssignment(x AnonymousFunction(a 'b'))"},
    {"numbers", "x = 0x1Fu8 + 0B101 + 1e3 + .5 + 3. + 3.*y + 1.5d-3j + 3.'",
     "SimpleAssignment(x BinaryOperation(BinaryOperation(BinaryOperation(BinaryOperation("
     "BinaryOperation(BinaryOperation(BinaryOperation(0x1Fu8 0B101) 1e3) .5) 3.) "
     "BinaryOperation(3 y)) 1.5d-3j) UnaryOperation(3)))"},
    {"a keyword directly after a number", "if 1else, x = 1end",
     "IfStatement(1 ElseClause(SimpleAssignment(x 1)))"},
    {"a continuation directly after a number", "x = [1 2...\n 3]",
     "SimpleAssignment(x MatrixLiteral(ListRow(1 2 3)))"},
};

constexpr Case lists[] = {
    {"a sign after a blank begins an element", "x = [a -b]",
     "SimpleAssignment(x MatrixLiteral(ListRow(a UnaryOperation(b))))"},
    {"other blanks around operators separate nothing", "x = [a - b, a-b, a *b a :b]",
     "SimpleAssignment(x MatrixLiteral(ListRow(BinaryOperation(a b) BinaryOperation(a b) "
     "BinaryOperation(a b) Range(a b))))"},
    {"a blank after `~` separates nothing, one before does", "x = [~ a ~b, a ~= b, a ~=b]",
     "SimpleAssignment(x MatrixLiteral(ListRow(UnaryOperation(a) UnaryOperation(b) "
     "BinaryOperation(a b) BinaryOperation(a b))))"},
    {"a quote after a blank opens a literal", "x = [a ' b' c']",
     "SimpleAssignment(x MatrixLiteral(ListRow(a ' b' UnaryOperation(c))))"},
    {"doubled quotes", "x = ['a''b' \"c\"\"d\"]",
     "SimpleAssignment(x MatrixLiteral(ListRow('a''b' \"c\"\"d\")))"},
    {"indices follow without a blank", "x = [f (1) f(1) f {1} f{1}]",
     "SimpleAssignment(x MatrixLiteral(ListRow(f Parenthesized(1) CallOrIndex(f 1) f "
     "CellLiteral(ListRow(1)) CellIndex(f 1))))"},
    {"parentheses and indices in a list are no list", "x = [(a -b) f(a -b) c{a -b}]",
     "SimpleAssignment(x MatrixLiteral(ListRow(Parenthesized(BinaryOperation(a b)) "
     "CallOrIndex(f BinaryOperation(a b)) CellIndex(c BinaryOperation(a b)))))"},
    {"commas at the ends of rows, and empty rows", "x = [,a,, ;;b;\n\n]",
     "SimpleAssignment(x MatrixLiteral(ListRow(a) ListRow(b)))"},
    {"line ends, comments and block comments between rows",
     "x = {1 % c\n2, ... c\n 3\n%{\nb\n%}\n4}",
     "SimpleAssignment(x CellLiteral(ListRow(1) ListRow(2 3) ListRow(4)))"},
    {"functions as elements", "x = {@(x) x+1, @(y) y -1 @f}",
     "SimpleAssignment(x CellLiteral(ListRow(AnonymousFunction(x BinaryOperation(x 1)) "
     "AnonymousFunction(y y) UnaryOperation(1) FunctionHandle(f))))"},
    {"empty lists and lists in lists", "x = {[] {1; {2, 'a'}}}",
     "SimpleAssignment(x CellLiteral(ListRow(MatrixLiteral() CellLiteral(ListRow(1) "
     "ListRow(CellLiteral(ListRow(2 'a')))))))"},
};

constexpr Case primaries[] = {
    {"indices, cells, fields, dynamic fields", "x(end).y{end-1}.(z) = w . v",
     "SimpleAssignment(DynamicField(CellIndex(FieldReference(CallOrIndex(x end) y) "
     "BinaryOperation(end 1)) z) FieldReference(w v))"},
    {"`:` and `end` at any depth of an argument list", "y = x(:, [1 end], {:})",
     "SimpleAssignment(y CallOrIndex(x : MatrixLiteral(ListRow(1 end)) CellLiteral(ListRow(:))))"},
    {"a dynamic field of a handle, a handle of several words", "x = {@a.(b) @a.b.(c).d}, y = @a. b",
     "SimpleAssignment(x CellLiteral(ListRow(DynamicField(FunctionHandle(a) b) "
     "FieldReference(DynamicField(FunctionHandle(a b) c) d)))) | SimpleAssignment(y "
     "FunctionHandle(a b))"},
    {"a `:` in a dynamic field and as the value of a named argument", "f(a.(:), b = :)",
     "CallOrIndex(f DynamicField(a :) NamedArgument(b :));"},
    {"keywords after a point are names", "a.end = s.if.x",
     "SimpleAssignment(FieldReference(a end) FieldReference(FieldReference(s if) x))"},
    {"named arguments", "y = f(a, Name=3, b)",
     "SimpleAssignment(y CallOrIndex(f a NamedArgument(Name 3) b))"},
    {"superclass calls", "x = step@pkg.Base(obj, 1) + a.b@C()",
     "SimpleAssignment(x BinaryOperation(SuperclassCall(step pkg.Base obj 1) "
     "SuperclassCall(FieldReference(a b) C)))"},
    {"handles, anonymous functions, class queries", "x = {@pkg.f, @() g(1), @(~, a) a', ?p.C}",
     "SimpleAssignment(x CellLiteral(ListRow(FunctionHandle(pkg f) AnonymousFunction(CallOrIndex(g "
     "1)) "
     "AnonymousFunction(~ a UnaryOperation(a)) ClassQuery(p.C))))"},
    {"letters beyond ASCII and beyond the first plane", "\xC3\xA4\x31 = \xF0\x9D\x92\x9C_2",
     "SimpleAssignment(\xC3\xA4\x31 \xF0\x9D\x92\x9C_2)"},
    {"a byte order mark is a blank at the start", "\xEF\xBB\xBFx = 1", "SimpleAssignment(x 1)"},
};

constexpr Case commands[] = {
    {"a letter after a blank makes a command", "hold on;x = 1",
     "CommandStatement(hold on) | SimpleAssignment(x 1)"},
    {"a sign with a blank only before it makes a command", "a -b", "CommandStatement(a -b)"},
    {"a sign between blanks makes no command", "a - b", "BinaryOperation(a b);"},
    {"a comparison between blanks makes no command", "a == b", "BinaryOperation(a b);"},
    {"a comparison with a blank only before it makes a command", "a ==b",
     "CommandStatement(a ==b)"},
    {"an assignment is never a command", "a =b", "SimpleAssignment(a b)"},
    {"a point, a brace, an operator at the line's end", "obj .f\na {1}\na -\na (1)",
     "CommandStatement(obj .f) | CommandStatement(a {1}) | CommandStatement(a -) | CallOrIndex(a "
     "1);"},
    {"words end at a separator outside of quotes", "disp 'a, b' \"c;\" d'e f'g, x",
     "CommandStatement(disp 'a, b' \"c;\" d'e f'g) | x;"},
    {"an unclosed quote ends with the line", "disp 'a, b % c\nx",
     "CommandStatement(disp 'a, b % c) | x;"},
    {"a comment ends a command", "import pkg.* % all", "CommandStatement(import pkg.*)"},
    {"a continuation continues a command", "foo ... one\n a...two\nb\nx",
     "CommandStatement(foo a b) | x;"},
    {"block words are names of commands outside of a class", "properties on",
     "CommandStatement(properties on)"},
};

constexpr Case statements[] = {
    {"several targets", "[a, ~, c.d{3}] = f(x); [x] = f; [~ b] = g",
     "MultipleAssignment(a ~ CellIndex(FieldReference(c d) 3) CallOrIndex(f x)) | "
     "MultipleAssignment(x f) | MultipleAssignment(~ b g)"},
    {"a list that is no list of targets", "[a, b](1) == 2",
     "BinaryOperation(CallOrIndex(MatrixLiteral(ListRow(a b)) 1) 2);"},
    {"conditions need no separator", "if a, b, elseif c d = 1; else, e, end",
     "IfStatement(a b; ElseIfClause(c SimpleAssignment(d 1)) ElseClause(e;))"},
    {"`else`, `case` and their like need no separator before them",
     "if a, b(1) elseif c, d = 1 else e = 2end, try f() catch, g, end\n"
     "switch x, case 1 a() case 2, b = 1otherwise c(), end",
     "IfStatement(a CallOrIndex(b 1); ElseIfClause(c SimpleAssignment(d 1)) "
     "ElseClause(SimpleAssignment(e 2))) | TryStatement(CallOrIndex(f); CatchClause(g;)) | "
     "SwitchStatement(x CaseClause(1 CallOrIndex(a);) CaseClause(2 SimpleAssignment(b 1)) "
     "OtherwiseClause(CallOrIndex(c);))"},
    {"loops",
     "for k = 1:3 f(k), end, for (k = x) g; end\nparfor (k = x, 4) g; end\nwhile x(1), y, end",
     "ForStatement(k Range(1 3) CallOrIndex(f k);) | ForStatement(k x g;) | ForStatement(k x 4 g;) "
     "| "
     "WhileStatement(CallOrIndex(x 1) y;)"},
    {"switch", "switch x % c\n case 'a'\n a\n case {2, 3}, b\n otherwise\n c\nend",
     "SwitchStatement(x CaseClause('a' a;) CaseClause(CellLiteral(ListRow(2 3)) b;) "
     "OtherwiseClause(c;))"},
    {"the word after catch",
     "try, a, catch e, b, end\ntry, a, catch e % c\n b, end\ntry\na\ncatch\nb\nend",
     "TryStatement(a; CatchClause(e b;)) | TryStatement(a; CatchClause(e b;)) | TryStatement(a; "
     "CatchClause(b;))"},
    {"a statement after catch", "try, a, catch disp(1), end",
     "TryStatement(a; CatchClause(CallOrIndex(disp 1);))"},
    {"spmd, global, persistent, return, break, continue",
     "spmd (3), x, end\nglobal a b\npersistent n; break, continue, return",
     "SpmdStatement(3 x;) | GlobalStatement(a b) | PersistentStatement(n) | break | continue | "
     "return"},
    {"a block comment begins its line", "X = 1 %{\nY = 2\n%}\nZ = 3",
     "SimpleAssignment(X 1) | SimpleAssignment(Y 2) | SimpleAssignment(Z 3)"},
    {"block comments nest", "%{\na\n %{ \nb\n%}\n%}\nx = 1 %{ no block\n%}\n",
     "SimpleAssignment(x 1)"},
    {"functions with and without outputs and inputs",
     "function [a b] = f(~, x), end\nfunction [] = g, end\nfunction r = h() r = 1; end",
     "FunctionDefinition(f ~ x a b) | FunctionDefinition(g) | FunctionDefinition(h r "
     "SimpleAssignment(r 1))"},
    {"functions without end", "function f\nx = 1\nfunction g\nif y, return, end",
     "FunctionDefinition(f SimpleAssignment(x 1)) | FunctionDefinition(g IfStatement(y return))"},
    {"nested functions in any list of statements", "function f\nif x\nfunction g\nend\nend\nend",
     "FunctionDefinition(f IfStatement(x NestedFunction(g)))"},
    {"argument blocks",
     "function f(x)\n\narguments % c\n x (1,:) double {mustBePositive} = 3\n x.y, z\nend\n"
     "arguments (Repeating), w, end\narguments = 1;\nend",
     "FunctionDefinition(f x ArgumentsBlock(ArgumentDeclaration(x ValidationNode(1 : double "
     "mustBePositive) 3) ArgumentDeclaration(FieldReference(x y)) ArgumentDeclaration(z)) "
     "ArgumentsBlock(ArgumentDeclaration(w) Attribute(Repeating)) SimpleAssignment(arguments 1))"},
};

constexpr Case classes[] = {
    {"a class on one line", "classdef A, properties, x; end, end",
     "Classdef(A PropertiesBlockNode(PropertyNode(x)))"},
    {"attributes and superclasses",
     "% c\n\nclassdef (Sealed, ~Hidden, D = 'x') A < a.B & c.D.end ... c\n & e\nend",
     "Classdef(Attribute(Sealed) Attribute(Hidden) Attribute(D 'x') A a.B c.D.end e)"},
    {"properties",
     "classdef A\nproperties (Access = {?a.B, ?C}, Logical)\n"
     "A (1,:) p.double {mustBeX, a.b, c(A, 1)} = 3; B, C = 4\nD {} = 2\nproperties\nevents "
     "double\nend\nend",
     "Classdef(A PropertiesBlockNode(PropertyNode(A ValidationNode(1 : p.double mustBeX "
     "FieldReference(a b) CallOrIndex(c A 1)) 3) PropertyNode(B) PropertyNode(C 4) PropertyNode(D "
     "{} 2) "
     "PropertyNode(properties) PropertyNode(events ValidationNode(double)) Attribute(Access "
     "CellLiteral(ListRow(ClassQuery(a.B) ClassQuery(C)))) Attribute(Logical)))"},
    {"methods, accessors and signatures",
     "classdef A\nmethods\nfunction x = get.A(obj), x = 1; end\n"
     "function obj = set.A(obj, v)\nend\nr = f(obj, ~)\n[a, b] = g\nh\nk(x)\nend\nend",
     "Classdef(A MethodsBlockNode(FunctionDefinition(get.A obj x SimpleAssignment(x 1)) "
     "FunctionDefinition(set.A obj v obj) FunctionDeclaration(f obj ~ r) FunctionDeclaration(g a "
     "b) "
     "FunctionDeclaration(h) FunctionDeclaration(k x)))"},
    {"events and enumeration members",
     "classdef A\nevents (Hidden), E1, E2\nend\nenumeration\nRed (1), Green\nend\nend",
     "Classdef(A EventsBlock(Event(E1) Event(E2) Attribute(Hidden)) EnumerationBlock("
     "EnumerationMember(Red 1) EnumerationMember(Green)))"},
    {"functions after the class", "classdef A\nend % c\n;\nfunction f\nend\n... the end",
     "Classdef(A) | FunctionDefinition(f)"},
};

// The type and the value of the number that a text consists of.
std::string numberOf(const AnalysisResult& analysis) {
  const auto& file = static_cast<const astapi::ListNode&>(*analysis.getRootNode());
  const auto& statement = static_cast<const astapi::WrapperNode&>(*file.elements.front());
  const auto describe = []<class T>(const T& value) {
    if constexpr (std::is_same_v<T, lf::astapi::Imaginary>) {
      return fmt::format("{}i", value.value);
    } else if constexpr (std::is_same_v<T, double>) {
      return fmt::format("{}", value);
    } else {
      return fmt::format("{}{} {}", std::is_signed_v<T> ? 's' : 'u', 8 * sizeof value, value);
    }
  };
  return std::visit(describe, static_cast<const astapi::NumberLiteral&>(*statement.operand).value);
}

TEST(Numbers, HaveTheNearestValueAndTheSmallestType) {
  constexpr std::pair<const char*, const char*> rows[] = {
      {"123456789012345", "123456789012345"},
      {"0.12345678901234567", "0.12345678901234566"},
      {"1234567890123456", "1234567890123456"},
      {"12345678901234567", "1.2345678901234568e+16"},
      {"9007199254740993.", "9007199254740992"},
      {"123456789012345678.9", "1.2345678901234568e+17"},
      {"18446744073709551617", "1.8446744073709552e+19"},
      {"100000000000000000001", "1e+20"},
      {".5", "0.5"},
      {"1.e2", "100"},
      {"25D-1", "2.5"},
      {"1e-400", "0"},
      {"1.5d+1j", "15i"},
      {"0xFF", "u8 255"},
      {"0X100", "u16 256"},
      {"0b11", "u8 3"},
      {"0x10000", "u32 65536"},
      {"0x0FFFFFFFFFFFFFFFF", "u64 18446744073709551615"},
      {"0x7fs8", "s8 127"},
      {"0x1u16", "u16 1"},
      {"0B1s32", "s32 1"},
      {"0x1s64", "s64 1"},
  };
  for (const auto& [text, number] : rows) {
    const auto analysis = analyzeText(fl::i18n::to_ustring(text));
    EXPECT_EQ(errorText(*analysis) + numberOf(*analysis), number) << text;
  }
}

std::string nameOf(const testing::TestParamInfo<Case>& info) { return std::to_string(info.index); }

INSTANTIATE_TEST_SUITE_P(Operators, Language, testing::ValuesIn(operators), nameOf);
INSTANTIATE_TEST_SUITE_P(Lists, Language, testing::ValuesIn(lists), nameOf);
INSTANTIATE_TEST_SUITE_P(Primaries, Language, testing::ValuesIn(primaries), nameOf);
INSTANTIATE_TEST_SUITE_P(Commands, Language, testing::ValuesIn(commands), nameOf);
INSTANTIATE_TEST_SUITE_P(Statements, Language, testing::ValuesIn(statements), nameOf);
INSTANTIATE_TEST_SUITE_P(Classes, Language, testing::ValuesIn(classes), nameOf);

}  // namespace
}  // namespace ca
