// The values of literals, as far as they decide whether a declaration accepts them.
#pragma once

#include <optional>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"

namespace soca {

struct LiteralValue {
  enum class Type {
    // Also `true` and `false`, as 1 and 0. An imaginary number is NaN.
    number,
    characters,
    string,
    // `[]`
    empty,
    // A list with more than one value.
    several,
    // A list in braces, whatever it holds.
    cell,
  };

  Type type = Type::number;
  double number = 0;
  // Whether a sign is in front of the number.
  bool isSigned = false;
  // Without quotes.
  fl::ustring text;

  bool isText() const { return type == Type::characters || type == Type::string; }
};

// Empty for an expression that is no literal. Literals are numbers with or without a sign, `true`,
// `false`, `NaN`, `Inf`, texts, lists of literals, and all of these in parentheses. A list in
// brackets with one value is that value, and one of character literals in a row is their text.
std::optional<LiteralValue> literalValueOf(const ca::AnalysisResult& analysis,
                                           const ca::astapi::Node& expression);

}  // namespace soca
