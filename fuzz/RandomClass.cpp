#include "fuzz/RandomClass.h"

#include <fmt/format.h>

#include <array>
#include <span>

#include "fuzz/RandomCode.h"
#include "platform/text/Conversions.h"

namespace soca::fuzz {
namespace {

using Choices = std::initializer_list<fl::ustring_view>;

struct ImplShape {
  fl::ustring_view name;
  std::size_t inputs;
  std::size_t outputs;
};
constexpr std::array<ImplShape, 13> implMethods = {{
    {u"isInputSizeLockedImpl", 2, 1},
    {u"isInputSizeLockedImpl", 2, 1},
    {u"isInputSizeMutableImpl", 2, 1},
    {u"isInputComplexityLockedImpl", 2, 1},
    {u"isInputComplexityMutableImpl", 2, 1},
    {u"processInputSizeChangeImpl", 2, 0},
    {u"processInputSpecificationChangeImpl", 2, 0},
    {u"isOutputComplexityLockedImpl", 2, 1},
    {u"isOutputSizeLockedImpl", 2, 1},
    {u"isInputDataTypeMutableImpl", 2, 1},
    {u"isDiscreteStateSpecificationMutableImpl", 1, 1},
    {u"isTunablePropertyDataTypeMutableImpl", 1, 1},
    {u"stepImpl", 2, 1},
}};

constexpr std::array<fl::ustring_view, 9> propertyNames = {
    u"Mode",      u"Rate",        u"Modes",      u"Count", u"L1",
    u"\u00C9tat", u"\U0001D49Cx", u"properties", u"ab_c"};

class ClassMaker {
 public:
  // Derives often from the classes `family`, if there are any.
  ClassMaker(bench::Dice* dice, fl::ustring name, const std::vector<fl::ustring>& others,
             const std::vector<fl::ustring>& family)
      : out_(dice), code_(&out_), name_(std::move(name)), others_(others), family_(family) {}

  RandomClass make() {
    // Only blank lines and comments may be before the class line.
    if (out_.once(6)) out_.lineEnd();
    writeHeader();
    const std::size_t blocks = 1 + out_.dice().roll(6);
    for (std::size_t number = 0; number < blocks; ++number) writeBlock();
    if (!family_.empty() && !out_.once(3)) writeImplMethods();
    out_.put(u"end");
    if (out_.once(6)) writeFunctions();
    out_.lastLines();
    return {{"", out_.text()}, out_.identifiers()};
  }

 private:
  void writeHeader() {
    out_.put(u"classdef");
    out_.space();
    if (!family_.empty() && out_.once(2)) {
      out_.put(u"(");
      out_.identifier(u"StrictDefaults");
      out_.put(u") ");
    } else if (out_.once(3)) {
      code_.attributes({u"StrictDefaults", u"StrictDefaults", u"Sealed", u"Abstract"});
      out_.gap();
    }
    out_.identifier(name_);
    if (!out_.once(20)) writeSuperClasses();
    out_.headEnd();
  }

  void writeSuperClasses() {
    out_.putBetweenGaps(u"<");
    const std::size_t count = 1 + out_.dice().roll(out_.once(4) ? 5 : 2);
    for (std::size_t number = 0; number < count; ++number) {
      if (number > 0) {
        out_.putBetweenGaps(u"&");
      }
      writeSuperClass();
    }
  }

  void writeSuperClass() {
    if (!family_.empty() && out_.once(2)) {
      superClass_ = family_[out_.dice().roll(family_.size())];
      return out_.identifier(superClass_);
    }
    if (!family_.empty() && !out_.once(8)) {
      return out_.identifier(
          out_.pick({u"velum.System", u"velum.System", u"velum.system.mixin.Propagates"}));
    }
    if (!others_.empty() && out_.once(4)) {
      return out_.identifier(others_[out_.dice().roll(others_.size())]);
    }
    out_.identifier(out_.pick(
        {u"velum.System", u"velum.System", u"velum.System", u"velum.System", u"velum.System",
         u"velum.System", u"velum.system.coder.System", u"velum.system.mixin.Propagates",
         u"velum.system.mixin.SampleTime", u"velum.system.mixin.CustomIcon",
         u"velum.system.mixin.internal.CustomIcon", u"velum.system.mixin.FiniteSource", u"handle",
         u"no.such.Class", u"very.long.name.of.a.package.WithALongClassNameAtItsEnd12345"}));
  }

  void writeBlock() {
    out_.indent();
    const std::size_t choice = out_.dice().roll(12);
    if (choice < 7) {
      writeProperties();
    } else if (choice < 11) {
      writeMethods();
    } else {
      writeNames();
    }
    out_.indent();
    out_.put(u"end");
    out_.once(20) ? out_.put(out_.pick({u";", u",", u" , "})) : out_.headEnd();
  }

  void writeProperties() {
    out_.put(u"properties");
    if (!out_.once(4)) {
      out_.gap();
      code_.attributes({u"Logical", u"PositiveInteger", u"Logical", u"PositiveInteger", u"Hidden",
                        u"Nontunable", u"Constant", u"Abstract", u"Dependent", u"Transient",
                        u"logical", u"Description", u"Access", u"GetAccess", u"SetAccess"});
    }
    out_.headEnd();
    // A block that the attribute rules convert needs default values for all properties.
    hasDefaults_ = !out_.once(3);
    out_.separated(4, [this] { writeProperty(); });
  }

  void writeProperty() {
    fl::ustring name(out_.dice().pick(propertyNames));
    const bool isCompanion = out_.once(3);
    if (isCompanion) name += u"Set";
    out_.identifier(name);
    if (out_.once(6)) code_.size();
    if (out_.once(6)) {
      out_.space();
      out_.identifier(out_.pick({u"double", u"logical", u"char", u"pkg.Type"}));
    }
    if (out_.once(6)) code_.validators(name);
    if (!isCompanion && !hasDefaults_ && out_.once(2)) return;
    out_.putBetweenGaps(u"=");
    if (isCompanion && !out_.once(10)) return writeSet();
    out_.once(2) ? out_.put(out_.pick({u"1", u"'a'", u"\"b\""})) : code_.expression(1);
  }

  void writeSet() {
    const fl::ustring_view name =
        out_.once(6) ? out_.pick({u"velum.system.StringSetGF", u"velum.system.DataTypeSet",
                                  u"velum.system.internal.StringSet", u"pkg.StringSet"})
                     : u"velum.system.StringSet";
    out_.dottedIdentifiers(name);
    out_.put(u"(");
    const SourceWriter::ListScope scope(&out_, false);
    const std::size_t choice = out_.dice().roll(10);
    if (choice == 0) code_.arguments(2);
    if (choice == 1) out_.put(out_.pick({u"\"b\"", u"\"say \"\"x\"\"\""}));
    if (choice == 2) code_.list(/*isCell=*/true, 2);
    if (choice > 3) {
      out_.put(out_.pick({u"{'a', 'b'}", u"{'a';'b'}", u"{'a', ...\n 'b'}", u"{'a' % one\n'b'}",
                          u"[\"b\", \"c\"]", u"{}", u"{{'a'}, 'b'}", u"{'it''s'}"}));
    }
    out_.put(u")");
  }

  void writeMethods() {
    out_.put(u"methods");
    if (!out_.once(4)) {
      out_.gap();
      if (out_.once(4)) {
        code_.attributes({u"Access", u"Static", u"Hidden", u"Sealed", u"Abstract", u"Test"});
      } else {
        out_.put(u"(");
        out_.identifier(u"Access");
        out_.put(out_.pick({u" = ", u"="}));
        out_.once(3) ? out_.put(u"'protected'") : out_.identifier(u"protected");
        out_.put(u")");
      }
    }
    out_.headEnd();
    out_.separated(3, [this] { writeMethod(); });
  }

  void writeMethod() {
    const std::size_t choice = out_.dice().roll(8);
    if (choice == 0) return code_.function(1);
    if (choice == 1) return code_.head(implHead());
    out_.put(u"function");
    out_.space();
    RandomCode::Head head = implHead();
    if (choice == 2) head.name = out_.pick({u"get.ModeSet", u"get.Rate", u"set.Mode"});
    code_.head(head);
    out_.headEnd();
    if (out_.once(10)) code_.argumentBlock();
    writeImplBody(head);
    out_.indent();
    out_.put(u"end");
  }

  RandomCode::Head implHead() {
    if (out_.once(6)) return code_.randomHead();
    const ImplShape& shape = out_.dice().pick(implMethods);
    RandomCode::Head head;
    head.name = shape.name;
    head.inputs.assign(shape.inputs, out_.pick({u"obj", u"~"}));
    if (shape.outputs > 0) head.outputs = {out_.pick({u"flag", u"flag", u"varargout"})};
    return head;
  }

  void writeImplBody(const RandomCode::Head& head) {
    out_.indent();
    if (head.outputs.size() == 1 && !out_.once(4)) {
      out_.identifier(head.outputs.front());
      if (head.outputs.front() == u"varargout") out_.put(u"{1}");
      out_.putBetweenGaps(u"=");
      out_.identifier(out_.pick({u"true", u"false", u"false", u"x"}));
      out_.separator();
    }
    if (out_.once(2)) code_.statements(3, 1);
  }

  // Methods of which classes that derive from each other may convert or call those of the others.
  void writeImplMethods() {
    out_.put(u"methods (");
    out_.identifier(u"Access");
    out_.put(u" = ");
    out_.identifier(u"protected");
    out_.put(u")\n");
    // The first one is listed twice.
    for (const ImplShape& shape : std::span(implMethods).subspan(1)) {
      if (out_.once(3)) writeImplMethod(shape);
    }
    out_.put(u"end\n");
  }

  void writeImplMethod(const ImplShape& shape) {
    RandomCode::Head head{{}, shape.name, std::vector<fl::ustring_view>(shape.inputs, u"obj")};
    if (shape.outputs > 0) head.outputs = {u"flag"};
    if (out_.once(4)) writeNameComment(shape.name);
    out_.put(u"function ");
    code_.head(head);
    out_.lineEnd();
    const bool callsSuperClass = !superClass_.empty() && out_.once(3);
    if (shape.outputs > 0) {
      out_.identifier(u"flag");
      out_.put(u" = ");
      if (!callsSuperClass) out_.identifier(out_.pick({u"false", u"false", u"true"}));
    }
    if (callsSuperClass) writeSuperClassCall(shape.name);
    out_.put(u";\nend");
    if (out_.once(8)) return writeNameComment(shape.name);
    out_.put(u"\n");
  }

  void writeNameComment(fl::ustring_view method) {
    out_.put(out_.pick({u"% ", u" %% ", u"  %--- "}));
    out_.put(method);
    out_.put(out_.pick({u"\n", u" ---\n", u" of 2\n"}));
  }

  void writeSuperClassCall(fl::ustring_view method) {
    out_.identifier(out_.once(4) ? out_.dice().pick(implMethods).name : method);
    out_.put(u"@");
    out_.identifier(superClass_);
    out_.put(u"(");
    out_.identifier(u"obj");
    out_.put(u")");
  }

  void writeNames() {
    const bool isEvents = out_.once(2);
    out_.put(isEvents ? u"events" : u"enumeration");
    if (out_.once(3)) {
      out_.gap();
      code_.attributes({u"Hidden"});
    }
    out_.headEnd();
    out_.separated(2, [this, isEvents] {
      out_.identifier(out_.pick({u"Moved", u"events", u"Mode"}));
      if (!isEvents && out_.once(2)) {
        out_.put(u"(");
        code_.arguments(2);
        out_.put(u")");
      }
    });
  }

  void writeFunctions() {
    out_.lineEnd();
    const std::size_t count = 1 + out_.dice().roll(2);
    for (std::size_t number = 0; number < count; ++number) {
      if (number > 0) out_.separator();
      code_.function(0);
    }
  }

  SourceWriter out_;
  RandomCode code_;
  fl::ustring name_;
  const std::vector<fl::ustring>& others_;
  const std::vector<fl::ustring>& family_;
  // The last one that is of the family.
  fl::ustring superClass_;
  bool hasDefaults_ = false;
};

}  // namespace

std::vector<RandomClass> makeRandomClasses(std::uint64_t seed, const std::string& suffix,
                                           const std::vector<fl::ustring>& family) {
  bench::Dice dice(seed);
  const std::size_t others = dice.roll(4);
  std::vector<fl::ustring> otherNames;
  for (std::size_t number = 0; number < others; ++number) {
    otherNames.push_back(fl::i18n::to_ustring(fmt::format("pkg.Base{}{}", number, suffix)));
  }
  std::vector<RandomClass> classes;
  const auto make = [&](const fl::ustring& name, std::string className) {
    classes.push_back(ClassMaker(&dice, name, otherNames, family).make());
    classes.back().file.className = std::move(className);
  };
  make(fl::i18n::to_ustring("C" + suffix), "C" + suffix);
  for (const fl::ustring& other : otherNames) {
    make(other.substr(4), fl::i18n::to_string(other));
  }
  return classes;
}

}  // namespace soca::fuzz
