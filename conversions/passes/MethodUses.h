// The uses of methods that rules rename or delete, by other classes than their own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"
#include "rules/RuleFamilies.h"

namespace soca {

// A set of the methods that rules rename or delete, with a bit for each name.
using MethodSet = std::uint16_t;
inline constexpr std::size_t mostMethods = 16;

// Empty for any other name.
MethodSet methodSetOf(fl::ustring_view name);

// The names of the methods in the set.
std::vector<fl::ustring_view> namesOf(MethodSet methods);

// What the text of a class has to do with such methods of other classes.
struct MethodNames {
  // Those to which it refers, as a call or otherwise, those that it declares, and those of them
  // that it also defines, so that derived classes have them.
  MethodSet referred = 0;
  MethodSet declared = 0;
  MethodSet defined = 0;

  friend bool operator==(const MethodNames&, const MethodNames&) = default;
  bool empty() const { return (referred | declared) == 0; }
  // Those of its superclasses that it uses: to which it refers, or which it overrides and which a
  // rule takes away whatever the superclasses have.
  MethodSet used() const;
  // Those of its superclasses on which its own conversions depend: which it declares and which are
  // redundant if no superclass has them, under the names that they have or will have.
  MethodSet concerned() const;
};

// Whether one of the names is anywhere in the text, if only in a longer one.
bool mayNameMethods(fl::ustring_view text);

MethodNames findMethodNames(const ca::AnalysisResult& analysis);
// The same of a text that refers at most to those; with `mayLose`, perhaps to fewer.
MethodNames findMethodNames(const ca::AnalysisResult& analysis, MethodSet referred, bool mayLose);

// The methods by whose presence the conversion of a method concerns derived classes.
MethodSet methodsChangedBy(ConversionKindType kind, fl::ustring_view method);

// A method of a class that another class uses by a name that a conversion takes away.
struct MethodUse {
  fl::ustring method;
  // One clause in UTF-8: "class 'a.B' refers to it".
  std::string text;
};

}  // namespace soca
