#include "conversions/risk/LiteralValue.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>
#include <variant>

namespace soca {
namespace {

using ca::astapi::ListNode;
using ca::astapi::Node;
using lf::astapi::NodeKind;
using Type = LiteralValue::Type;
using Result = std::optional<LiteralValue>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

Result makeNumber(double number) { return LiteralValue{Type::number, number, {}}; }

Result valueOf(const ca::astapi::NumberLiteral& literal) {
  return std::visit(
      [](const auto& number) {
        if constexpr (std::is_same_v<std::decay_t<decltype(number)>, lf::astapi::Imaginary>) {
          return makeNumber(notANumber);
        } else {
          return makeNumber(static_cast<double>(number));
        }
      },
      literal.value);
}

Result valueOf(const ca::astapi::Identifier& name) {
  struct Constant {
    fl::ustring_view name;
    double value;
  };
  static constexpr auto constants = std::to_array<Constant>({
      {u"true", 1},
      {u"false", 0},
      {u"NaN", notANumber},
      {u"Inf", std::numeric_limits<double>::infinity()},
  });
  const auto* const found = std::ranges::find(constants, name.text.view(), &Constant::name);
  return found == constants.end() ? std::nullopt : makeNumber(found->value);
}

// The text without its quotes, and with one quote for each two.
Result valueOf(const ca::astapi::CharLiteral& literal, Type type) {
  const fl::ustring_view written = literal.text.view();
  LiteralValue value{type, 0, {}};
  for (std::size_t i = 1; i + 1 < written.size(); ++i) {
    value.text += written[i];
    if (written[i] == written.front()) ++i;
  }
  return value;
}

// Reads the literals of one text.
class LiteralReader {
 public:
  explicit LiteralReader(fl::ustring_view text) : text_(text) {}

  Result read(const Node& expression) const {
    switch (expression.kind) {
      case NodeKind::Parenthesized:
        return read(*static_cast<const ca::astapi::WrapperNode&>(expression).operand);
      case NodeKind::NumberLiteral:
        return valueOf(static_cast<const ca::astapi::NumberLiteral&>(expression));
      case NodeKind::Identifier:
        return valueOf(static_cast<const ca::astapi::Identifier&>(expression));
      case NodeKind::CharLiteral:
        return valueOf(static_cast<const ca::astapi::CharLiteral&>(expression), Type::characters);
      case NodeKind::StringLiteral:
        return valueOf(static_cast<const ca::astapi::CharLiteral&>(expression), Type::string);
      case NodeKind::UnaryOperation:
        return readSigned(static_cast<const ca::astapi::UnaryOperation&>(expression));
      case NodeKind::MatrixLiteral:
        return readMatrix(static_cast<const ListNode&>(expression));
      case NodeKind::CellLiteral:
        return readCell(static_cast<const ListNode&>(expression));
      default:
        return std::nullopt;
    }
  }

 private:
  // The elements of a list, without those that add nothing to it.
  struct Elements {
    std::size_t count = 0;
    // The number of rows with such elements.
    std::size_t rows = 0;
    // The only element; of several that are all characters their text.
    LiteralValue joined{Type::empty, 0, {}};
    bool areAllCharacters = true;

    void add(LiteralValue value) {
      areAllCharacters &= value.type == Type::characters || value.type == Type::empty;
      if (value.type == Type::empty) return;
      if (value.type == Type::characters && value.text.empty()) {
        if (count == 0) joined = std::move(value);
        return;
      }
      if (++count == 1) {
        joined = std::move(value);
      } else if (areAllCharacters) {
        joined.text += value.text;
      }
    }
  };

  Result readSigned(const ca::astapi::UnaryOperation& operation) const {
    const char16_t sign = text_[operation.position];
    if (!operation.isPrefix || (sign != u'+' && sign != u'-')) return std::nullopt;
    Result value = read(*operation.operand);
    if (!value || value->type != Type::number) return std::nullopt;
    if (sign == u'-') value->number = -value->number;
    value->isSigned = true;
    return value;
  }

  Result readMatrix(const ListNode& list) const {
    auto elements = readElements(list);
    if (!elements) return std::nullopt;
    if (elements->count > 1 && (elements->rows > 1 || !elements->areAllCharacters)) {
      return LiteralValue{.type = Type::several};
    }
    return std::move(elements->joined);
  }

  Result readCell(const ListNode& list) const {
    if (!readElements(list)) return std::nullopt;
    return LiteralValue{Type::cell, 0, {}};
  }

  // Empty if an element is no literal.
  std::optional<Elements> readElements(const ListNode& list) const {
    Elements elements;
    for (const Node* row : list.elements) {
      const std::size_t count = elements.count;
      for (const Node* element : static_cast<const ListNode*>(row)->elements) {
        Result value = read(*element);
        if (!value) return std::nullopt;
        elements.add(std::move(*value));
      }
      if (elements.count > count) ++elements.rows;
    }
    return elements;
  }

  fl::ustring_view text_;
};

}  // namespace

Result literalValueOf(const ca::AnalysisResult& analysis, const Node& expression) {
  return LiteralReader(analysis.sourceTextView()).read(expression);
}

}  // namespace soca
