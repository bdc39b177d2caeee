// Lines that are laid apart: where they are broken, what the check of the new lines accepts, and
// what the program makes of crowded lines of each kind.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "conversions/layout/LineBreaks.h"
#include "conversions/layout/SameTree.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/SourceAnalysis.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

using fl::i18n::to_string;
using fl::i18n::to_ustring;

fl::ustring withBreaks(fl::ustring text, const std::vector<LineBreak>& breaks) {
  for (auto each = breaks.rbegin(); each != breaks.rend(); ++each) {
    text.replace(each->offset, each->length, each->text);
  }
  return text;
}

// The text with all its lines laid apart, and "bad: " before it if the check does not accept it.
std::string layApart(const std::string& text) {
  const auto read = ca::analyzeText(to_ustring(text));
  EXPECT_FALSE(read->hasSyntaxError()) << text;
  const ca::KnownFunctions known = read->knownFunctions();
  const ca::SourceAnalysis before(read->sharedSourceText(), &known);
  std::set<std::uint64_t> lines;
  for (std::uint64_t line = 0; line < text.size(); ++line) lines.insert(line);
  const auto breaks = findLineBreaks(before, lines);
  const auto after = ca::analyzeText(withBreaks(to_ustring(text), breaks));
  EXPECT_TRUE(findLineBreaks(*after, lines).empty()) << text;
  return (haveSameTree(before, *after, breaks) ? "" : "bad: ") + to_string(after->sourceTextView());
}

std::string inMethod(const std::string& body) {
  return "classdef C\n    methods\n        function f(x)\n" + body + "        end\n    end\nend\n";
}

TEST(Layout, EachMemberAndStatementGetsALine) {
  const struct {
    const char* shows;
    std::string before;
    std::string after;
  } rows[] = {
      {"a block and its members", "classdef C\n  properties (Hidden), A = 1; B; end\nend\n",
       "classdef C\n  properties (Hidden)\n    A = 1;\n    B;\n  end\nend\n"},
      {"events, enumeration and signatures",
       "classdef C\n  events, A, B, end\n  enumeration, D (1), E, end\n"
       "  methods (Abstract), f(x), y = g(x); end\nend",
       "classdef C\n  events\n    A\n    B\n  end\n  enumeration\n    D (1)\n    E\n  end\n"
       "  methods (Abstract)\n    f(x)\n    y = g(x);\n  end\nend"},
      {"a whole class, where nothing shows how to indent",
       "classdef C < D, properties, A, end, methods, function f(x), x = 1; end, end, end",
       "classdef C < D\n    properties\n        A\n    end\n    methods\n        function f(x)\n"
       "            x = 1;\n        end\n    end\nend"},
      {"functions after the class", "classdef C, end, function f, x; end\nfunction g, end\n",
       "classdef C\nend\nfunction f\n    x;\nend\nfunction g\nend\n"},
      {"arguments and a nested function",
       inMethod("            arguments (Input), x (1, 1) = 1, end, y; function g, z, end, y\n"),
       inMethod("            arguments (Input)\n                x (1, 1) = 1\n            end\n"
                "            y;\n            function g\n                z\n            end\n"
                "            y\n")},
      {"if", inMethod("            if x, a, elseif y, b; c, else d, end, e\n"),
       inMethod("            if x\n                a\n            elseif y\n                b;\n"
                "                c\n            else\n                d\n            end\n"
                "            e\n")},
      {"no separators", inMethod("            if x a = 1 else b = 2 end\n"),
       inMethod("            if x\n                a = 1\n            else\n"
                "                b = 2\n            end\n")},
      {"loops",
       inMethod("            for (i = 1:3) a; end, while x, break, end; parfor j = y, j, end\n"),
       inMethod("            for (i = 1:3)\n                a;\n            end\n"
                "            while x\n                break\n            end;\n"
                "            parfor j = y\n                j\n            end\n")},
      {"switch", inMethod("            switch x, case {1, 2}, a; case 3, b, otherwise, c, end\n"),
       inMethod("            switch x\n                case {1, 2}\n                    a;\n"
                "                case 3\n                    b\n                otherwise\n"
                "                    c\n            end\n")},
      {"the identifier of a catch, a statement after it, and neither",
       inMethod("            try, a; catch err, b(err), end, try, a, catch b(1), end, try; catch; "
                "end\n"),
       inMethod("            try\n                a;\n            catch err\n"
                "                b(err)\n            end\n            try\n                a\n"
                "            catch\n                b(1)\n            end\n            try;\n"
                "            catch;\n            end\n")},
      {"commands", inMethod("            hold on, disp 'a, b; % c' d; format long % now\n"),
       inMethod("            hold on\n            disp 'a, b; % c' d;\n"
                "            format long % now\n")},
      {"separators in literals and lists",
       inMethod("            a = 'x; y, ''z'; b = \"end, %{\"; c = [1, 2; 3, 4]'; d = {@(t) t, "
                "'%'};\n"),
       inMethod("            a = 'x; y, ''z';\n            b = \"end, %{\";\n"
                "            c = [1, 2; 3, 4]';\n            d = {@(t) t, '%'};\n")},
      {"a list over several lines",
       inMethod("            a; b = [1, 2 % one\n                %{\n  x\n%}\n  3]; c; % two\n"),
       inMethod("            a;\n            b = [1, 2 % one\n                %{\n  x\n%}\n  3];\n"
                "            c; % two\n")},
      {"comments stay with the text before them",
       inMethod("            a; b; %{\n            c, d %}\n            %{\n            e, f\n"
                "            %}\n"),
       inMethod("            a;\n            b; %{\n            c\n            d %}\n"
                "            %{\n            e, f\n            %}\n")},
      {"continuations",
       inMethod("            a; b = 1 + ... c; d\n              2; e, ... f\n              g\n"),
       inMethod(
           "            a;\n            b = 1 + ... c; d\n              2;\n            e, ... f\n"
           "              g\n")},
      {"several separators, and one that begins a line",
       inMethod("            a ,; b ;, c,, d , e ;\n            , f\n"),
       inMethod("            a ,;\n            b ;,\n            c,,\n            d\n"
                "            e ;\n            ,\n            f\n")},
      {"CR LF, at the end of the file too",
       "classdef C\r\n  properties\r\n    A; B,\tD\r\n  end, end",
       "classdef C\r\n  properties\r\n    A;\r\n    B\r\n    D\r\n  end\r\nend"},
      {"tabs", "classdef C\n\tmethods\n\t\tfunction f, if x, y, end, end\n\tend\nend\n",
       "classdef C\n\tmethods\n\t\tfunction f\n\t\t\tif x\n\t\t\t\ty\n\t\t\tend\n\t\tend\n"
       "\tend\nend\n"},
      {"no indentation", "classdef C\nmethods\nfunction f, if x, y, end, end\nend\nend\n",
       "classdef C\nmethods\nfunction f\nif x\ny\nend\nend\nend\nend\n"},
      {"the nearest block, of blocks that are indented differently",
       "classdef C\nproperties\n   A\nend\nproperties, B, end\nmethods\n      function f\n      x\n"
       "      end\n      function g, x, end\nend\nend\n",
       "classdef C\nproperties\n   A\nend\nproperties\n   B\nend\nmethods\n      function f\n"
       "      x\n      end\n      function g\n      x\n      end\nend\nend\n"},
      {"after a byte order mark",
       "\xEF\xBB\xBF"
       "classdef C, end",
       "\xEF\xBB\xBF"
       "classdef C\nend"},
  };
  for (const auto& row : rows) EXPECT_EQ(layApart(row.before), row.after) << row.shows;
}

// The text between two `|` is replaced by the given one.
TEST(Layout, OtherTreesAndCommentsAreNotTaken) {
  const struct {
    const char* shows;
    const char* text;
    const char* replacement;
    bool isSame;
  } rows[] = {
      {"another line", "x = 1;| |y", "\n", true},
      {"a comment of a line that becomes one of a block", "x;| |%{\n% y\n%}\n", "\n", false},
      {"a comment of a block that becomes one of a line", "x;|\n|%{\n% y\n%}\n", " ", false},
      {"an end of a block comment that becomes a line of it", "%{\n%}|\n|%}\n", " ", false},
      {"a statement that a comment takes", "x| |y;\nz", " %", false},
      {"an identifier of a catch that becomes a statement", "try, x, catch| |y, z, end", "\n",
       false},
      {"a word of a command that becomes a statement", "hold| |on", "\n", false},
      {"a row of a list that becomes two", "x = [1| |2]", ";", false},
      {"a word of a literal that changes", "x = 'a| |b'", "  ", false},
      {"a syntax error", "x = 1 +| |2", "\n", false},
      {"a comment that moves into a continuation", "x = 1 + ...| |\n2 % y\n", " % y", false},
  };
  for (const auto& row : rows) {
    fl::ustring text = to_ustring(row.text);
    const std::size_t start = text.find(u'|');
    const std::size_t length = text.find(u'|', start + 1) - start - 1;
    text.erase(start, 1).erase(start + length, 1);
    const std::vector<LineBreak> breaks = {{start, length, to_ustring(row.replacement), 0}};
    const auto before = ca::analyzeText(text);
    ASSERT_FALSE(before->hasSyntaxError()) << row.shows;
    const auto after = ca::analyzeText(withBreaks(text, breaks));
    EXPECT_EQ(haveSameTree(*before, *after, breaks), row.isSame) << row.shows;
  }
}

}  // namespace
}  // namespace soca
