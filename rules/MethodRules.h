// The names of the methods that the `impl` rules convert, and the signatures that they expect.
#pragma once

#include <algorithm>
#include <array>

#include "platform/text/UString.h"
#include "rules/RuleFamilies.h"
#include "rules/RuleFinding.h"

namespace soca {

// Queries about one input and about the object only, and a method with inputs and no result.
inline constexpr ExpectedSignature queryOfInput{
    .inputs = 2, .takesMoreInputs = false, .outputs = 1};
inline constexpr ExpectedSignature queryOfObject{
    .inputs = 1, .takesMoreInputs = false, .outputs = 1};
inline constexpr ExpectedSignature changeHandler{
    .inputs = 2, .takesMoreInputs = true, .outputs = 0};

struct RenameRule {
  const char16_t* oldName;
  const char16_t* newName;
  // `renameNegate` for a query whose new name has the opposite meaning.
  ConversionKindType kind;
  const ExpectedSignature* expected;
};

inline constexpr auto renameRules = std::to_array<RenameRule>({
    {u"isInputSizeLockedImpl", u"isInputSizeMutableImpl", ConversionKindType::renameNegate,
     &queryOfInput},
    {u"isInputComplexityLockedImpl", u"isInputComplexityMutableImpl",
     ConversionKindType::renameNegate, &queryOfInput},
    {u"processInputSizeChangeImpl", u"processInputSpecificationChangeImpl",
     ConversionKindType::rename, &changeHandler},
});

inline constexpr auto obsoleteMethods =
    std::to_array<const char16_t*>({u"isOutputComplexityLockedImpl", u"isOutputSizeLockedImpl"});

struct RedundantMethod {
  const char16_t* name;
  const ExpectedSignature* expected;
};

// Methods that are redundant in a class with strict defaults if they return `false`.
inline constexpr auto redundantMethods = std::to_array<RedundantMethod>({
    {u"isInputDataTypeMutableImpl", &queryOfInput},
    {u"isInputSizeMutableImpl", &queryOfInput},
    {u"isInputComplexityMutableImpl", &queryOfInput},
    {u"isDiscreteStateSpecificationMutableImpl", &queryOfObject},
    {u"isTunablePropertyDataTypeMutableImpl", &queryOfObject},
});

// The old name of the method, or an empty string if no rule gives a method this name.
constexpr fl::ustring_view oldNameOf(fl::ustring_view newName) {
  const auto rule = std::ranges::find_if(
      renameRules, [&](const RenameRule& each) { return each.newName == newName; });
  return rule == renameRules.end() ? fl::ustring_view() : rule->oldName;
}

}  // namespace soca
