// Texts without errors, and their trees.
#include <gtest/gtest.h>

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
     "UnaryOperation(BinaryOperation(a UnaryOperation(b)))"},
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
    {"a sign between blanks makes no command", "a - b", "BinaryOperation(a b)"},
    {"a comparison between blanks makes no command", "a == b", "BinaryOperation(a b)"},
    {"a comparison with a blank only before it makes a command", "a ==b",
     "CommandStatement(a ==b)"},
    {"an assignment is never a command", "a =b", "SimpleAssignment(a b)"},
    {"a point, a brace, an operator at the line's end", "obj .f\na {1}\na -\na (1)",
     "CommandStatement(obj .f) | CommandStatement(a {1}) | CommandStatement(a -) | CallOrIndex(a "
     "1)"},
    {"words end at a separator outside of quotes", "disp 'a, b' \"c;\" d'e f'g, x",
     "CommandStatement(disp 'a, b' \"c;\" d'e f'g) | x"},
    {"an unclosed quote ends with the line", "disp 'a, b % c\nx",
     "CommandStatement(disp 'a, b % c) | x"},
    {"a comment ends a command", "import pkg.* % all", "CommandStatement(import pkg.*)"},
    {"a continuation continues a command", "foo ... one\n a...two\nb\nx",
     "CommandStatement(foo a b) | x"},
    {"block words are names of commands outside of a class", "properties on",
     "CommandStatement(properties on)"},
};

constexpr Case statements[] = {
    {"several targets", "[a, ~, c.d{3}] = f(x); [x] = f; [~ b] = g",
     "MultipleAssignment(a ~ CellIndex(FieldReference(c d) 3) CallOrIndex(f x)) | "
     "MultipleAssignment(x f) | MultipleAssignment(~ b g)"},
    {"a list that is no list of targets", "[a, b](1) == 2",
     "BinaryOperation(CallOrIndex(MatrixLiteral(ListRow(a b)) 1) 2)"},
    {"conditions need no separator", "if a, b, elseif c d = 1; else, e, end",
     "IfStatement(a b ElseIfClause(c SimpleAssignment(d 1)) ElseClause(e))"},
    {"loops",
     "for k = 1:3 f(k), end, for (k = x) g; end\nparfor (k = x, 4) g; end\nwhile x(1), y, end",
     "ForStatement(k Range(1 3) CallOrIndex(f k)) | ForStatement(k x g) | ForStatement(k x 4 g) | "
     "WhileStatement(CallOrIndex(x 1) y)"},
    {"switch", "switch x % c\n case 'a'\n a\n case {2, 3}, b\n otherwise\n c\nend",
     "SwitchStatement(x CaseClause('a' a) CaseClause(CellLiteral(ListRow(2 3)) b) "
     "OtherwiseClause(c))"},
    {"the word after catch",
     "try, a, catch e, b, end\ntry, a, catch e % c\n b, end\ntry\na\ncatch\nb\nend",
     "TryStatement(a CatchClause(e b)) | TryStatement(a CatchClause(e b)) | TryStatement(a "
     "CatchClause(b))"},
    {"a statement after catch", "try, a, catch disp(1), end",
     "TryStatement(a CatchClause(CallOrIndex(disp 1)))"},
    {"spmd, global, persistent, return, break, continue",
     "spmd (3), x, end\nglobal a b\npersistent n; break, continue, return",
     "SpmdStatement(3 x) | GlobalStatement(a b) | PersistentStatement(n) | break | continue | "
     "return"},
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

std::string nameOf(const testing::TestParamInfo<Case>& info) { return std::to_string(info.index); }

INSTANTIATE_TEST_SUITE_P(Operators, Language, testing::ValuesIn(operators), nameOf);
INSTANTIATE_TEST_SUITE_P(Lists, Language, testing::ValuesIn(lists), nameOf);
INSTANTIATE_TEST_SUITE_P(Primaries, Language, testing::ValuesIn(primaries), nameOf);
INSTANTIATE_TEST_SUITE_P(Commands, Language, testing::ValuesIn(commands), nameOf);
INSTANTIATE_TEST_SUITE_P(Statements, Language, testing::ValuesIn(statements), nameOf);
INSTANTIATE_TEST_SUITE_P(Classes, Language, testing::ValuesIn(classes), nameOf);

}  // namespace
}  // namespace ca
