#include "model/Method.h"

#include <gtest/gtest.h>

#include <limits>

#include "model/MethodsBlock.h"
#include "tests/model/ModelOfText.h"

namespace soca {
namespace {

using testing::ModelOfText;
using testing::printed;

// A class whose first method begins on line 2.
ModelOfText classWithMethod(const std::string& method, const std::string& rest = "") {
  return ModelOfText(
      fl::i18n::to_ustring("classdef C\nmethods\n" + method + "\nend\n" + rest + "end\n"));
}

const Method& methodOf(const ModelOfText& model) {
  return model.definition->getMethodsBlocks()[0].getMethods()[0];
}

TEST(Method, Signature) {
  const ModelOfText model = classWithMethod("  function [a, b] = get.Foo(obj, ~, x)\n  end");
  const Method& method = methodOf(model);
  EXPECT_TRUE(method.isFunctionDefinition());
  EXPECT_EQ(method.getName(), u"get.Foo");
  EXPECT_EQ(method.getNumberOfInputs(), 3U);
  EXPECT_EQ(method.getNumberOfOutputs(), 2U);
  EXPECT_EQ(method.getOutputName(0), u"a");
  EXPECT_EQ(method.getOutputName(1), u"b");
  EXPECT_EQ(method.getNameExtent(), (Extent{{2, 20}, {2, 27}}));
  EXPECT_EQ(method.getFullExtent(), (Extent{{2, 2}, {3, 5}}));
}

TEST(MethodDeathTest, DefinitionsOnly) {
  const ModelOfText model = classWithMethod("flag = f(obj)");
  const Method& method = methodOf(model);
  EXPECT_FALSE(method.isFunctionDefinition());
  EXPECT_EQ(method.getName(), u"f");
  EXPECT_EQ(method.getNameExtent(), (Extent{{2, 7}, {2, 8}}));
  EXPECT_DEATH(method.getNumberOfInputs(), "Method without a body");
  EXPECT_DEATH(method.getBodyExtent(), "Method without a body");
}

TEST(Method, Body) {
  constexpr auto allOnes = std::numeric_limits<std::uint64_t>::max();
  const std::pair<const char*, Extent> rows[] = {
      {"function f(o)\n  x = 1;\n  y\n  end", {{3, 2}, {5, 1}}},
      {"function f(o)\n  x = 1;\nend", {{3, 2}, {4, allOnes}}},
      {"function f(o)\n % nothing\n    end", {{4, 3}, {4, 3}}},
      {"function f(o), x, end", {{2, 15}, {2, 17}}},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(printed(methodOf(classWithMethod(text)).getBodyExtent()), printed(expected)) << text;
  }
}

TEST(Method, ReturnStatements) {
  const ModelOfText model = classWithMethod(
      "function f(o)\n"
      "  if o, return, end\n"
      "  function g\n    return\n  end\n"
      "  while o\n    for i = 1, return; end\n  end\n"
      "  % return\n"
      "  x = 'return';\n"
      "end\n"
      "function h(o)\n  return\nend");
  const auto statements = methodOf(model).findReturnStatements();
  ASSERT_EQ(statements.size(), 2U);
  EXPECT_EQ(printed(statements[0]), "From (3,8) to (3,14)");
  EXPECT_EQ(printed(statements[1]), "From (8,15) to (8,21)");
  EXPECT_TRUE(methodOf(classWithMethod("function f(o)\nend")).findReturnStatements().empty());
}

TEST(Method, References) {
  struct Row {
    const char* shows;
    const char* body;
    const char* rest;
    bool isReferenced;
  };
  const Row rows[] = {
      {"its own name only", "", "", false},
      {"a call", "aImpl(o);", "", true},
      {"a call as a field", "o.aImpl();", "", true},
      {"a handle", "h = @aImpl;", "", true},
      {"a superclass call", "aImpl@Base(o);", "", true},
      {"a default of a property", "", "properties\nP = aImpl\nend\n", true},
      {"another method of the name", "", "methods\nfunction aImpl(o)\nend\nend\n", true},
      {"a comment, a literal, another name", "% aImpl\nx = 'aImpl' + \"aImpl\" + aImpl2;", "",
       false},
      {"the words of a command", "disp aImpl", "", false},
      {"another case", "aimpl(o)", "", false},
  };
  for (const Row& row : rows) {
    const ModelOfText model =
        classWithMethod(std::string("function aImpl(o)\n") + row.body + "\nend", row.rest);
    EXPECT_EQ(methodOf(model).isMethodReferencedInSysObj(), row.isReferenced) << row.shows;
  }
  const ModelOfText earlier(
      u"classdef C\nproperties\nP = aImpl\nend\nmethods\nfunction aImpl(o)\nend\nend\nend\n");
  EXPECT_TRUE(methodOf(earlier).isMethodReferencedInSysObj());
  const ModelOfText onOneLine = classWithMethod("function aImpl(o), aImpl(o), end");
  EXPECT_TRUE(methodOf(onOneLine).isMethodReferencedInSysObj());
}

TEST(Method, SimpleConstantAssignment) {
  struct Row {
    const char* output;
    const char* body;
    // The constant and its extent; empty for a body that is not simple.
    const char* expected;
  };
  const Row rows[] = {
      {"out", "out = true;", "true From (3,6) to (3,10)"},
      {"out", "out = ...\n false", "false From (4,1) to (4,6)"},
      {"out", "% why\nout = false % so", "false From (4,6) to (4,11)"},
      {"out", "out = ~true;", ""},
      {"out", "out = (true);", ""},
      {"out", "out = 1;", ""},
      {"out", "out = True;", ""},
      {"out", "result = true;", ""},
      {"out", "out = true; x = 1;", ""},
      {"out", "", ""},
      {"out", "out", ""},
      {"out", "[out] = true;", ""},
      {"out", "out(1) = true;", ""},
      {"out", "out{1} = true;", ""},
      {"out", "if true, out = true; end", ""},
      {"out", "varargout{1} = false;", ""},
      {"varargout", "varargout{1} = false;", "false From (3,15) to (3,20)"},
      {"varargout", "varargout{1.0} = true;", "true From (3,17) to (3,21)"},
      {"varargout", "varargout{0x1} = true;", "true From (3,17) to (3,21)"},
      {"varargout", "varargout = true;", "true From (3,12) to (3,16)"},
      {"varargout", "varargout{2} = true;", ""},
      {"varargout", "varargout{1i} = true;", ""},
      {"varargout", "varargout{n} = true;", ""},
      {"varargout", "varargout{1, 1} = true;", ""},
      {"varargout", "varargout(1) = true;", ""},
      {"varargout", "varargin{1} = true;", ""},
  };
  for (const Row& row : rows) {
    const ModelOfText model =
        classWithMethod(std::string("function ") + row.output + " = f(o)\n" + row.body + "\nend");
    bool constant = false;
    Extent extent;
    std::string found;
    if (methodOf(model).isSimpleConstantAssignment(fl::i18n::to_ustring(row.output), constant,
                                                   extent.start, extent.end)) {
      found = (constant ? "true " : "false ") + printed(extent);
    }
    EXPECT_EQ(found, row.expected) << row.body;
  }
}

}  // namespace
}  // namespace soca
