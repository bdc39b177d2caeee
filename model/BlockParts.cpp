#include "model/BlockParts.h"

#include <algorithm>

#include "model/AnalyzerPositions.h"

namespace soca::blockParts {
namespace {

using lf::astapi::NodeKind;

constexpr std::uint64_t endKeywordLength = 3;

// The written form of a value that is one token; empty for any other expression.
std::optional<fl::ustring_view> tokenText(const ca::astapi::Node& value) {
  switch (value.kind) {
    case NodeKind::Identifier:
      return static_cast<const ca::astapi::Identifier&>(value).text.view();
    case NodeKind::CharLiteral:
      return static_cast<const ca::astapi::CharLiteral&>(value).text.view();
    case NodeKind::NumberLiteral:
      return static_cast<const ca::astapi::NumberLiteral&>(value).text.view();
    default:
      return std::nullopt;
  }
}

fl::ustring valueText(const ca::AnalysisResult& analysis, const ca::astapi::Node& value) {
  const auto token = tokenText(value);
  return token ? fl::ustring(*token) : analysis.getNodeText(value, false);
}

fl::ustring_view withoutQuotes(fl::ustring_view literal) {
  return literal.substr(1, literal.size() - 2);
}

const Attribute* findAttribute(const BlockNode& block, fl::ustring_view name) {
  const auto& attributes = block.attributes;
  const auto found = std::find_if(
      attributes.begin(), attributes.end(),
      [&](const Attribute* attribute) { return attribute->name->text.view() == name; });
  return found != attributes.end() ? *found : nullptr;
}

}  // namespace

Extent openingExtent(const ca::AnalysisResult& analysis, const BlockNode& block,
                     fl::ustring_view keyword) {
  Extent extent = makeExtentOfToken(analysis, block.position, keyword.size());
  if (!block.attributes.empty())
    extent.end = makePosition(analysis, block.closingParenthesis, true);
  return extent;
}

Extent attributesExtent(const ca::AnalysisResult& analysis, const BlockNode& block,
                        fl::ustring_view keyword) {
  if (block.attributes.empty()) {
    const auto keywordEnd = makeExtentOfToken(analysis, block.position, keyword.size()).end;
    return {keywordEnd, keywordEnd};
  }
  return makeExtentFromPair(
      analysis,
      lf::astapi::BracketPair{block.openingParenthesis, block.closingParenthesis}.packed());
}

Extent closingExtent(const ca::AnalysisResult& analysis, const BlockNode& block) {
  const auto end = makePosition(analysis, block.closing.getClosingPosition(), true);
  return {{end.line, end.column - endKeywordLength}, end};
}

std::vector<AttributeText> attributeTexts(const ca::AnalysisResult& analysis,
                                          const BlockNode& block) {
  std::vector<AttributeText> texts;
  texts.reserve(block.attributes.size());
  for (const Attribute* attribute : block.attributes) {
    AttributeText& text = texts.emplace_back();
    text.name = attribute->name->text.getText();
    text.negated = attribute->negated;
    if (attribute->value != nullptr) text.value = valueText(analysis, *attribute->value);
  }
  return texts;
}

bool hasLogicalAttribute(const BlockNode& block, fl::ustring_view name) {
  const Attribute* attribute = findAttribute(block, name);
  return attribute != nullptr && (attribute->isAttributeWithGivenLogicalValue(true) ||
                                  attribute->isAttributeWithGivenLogicalValue(false));
}

bool hasLogicalAttributeValue(const BlockNode& block, fl::ustring_view name, bool value) {
  const Attribute* attribute = findAttribute(block, name);
  return attribute != nullptr && attribute->isAttributeWithGivenLogicalValue(value);
}

std::optional<std::size_t> indexOfAttribute(const Attribute& attribute,
                                            std::span<const fl::ustring_view> names) {
  const auto found = std::ranges::find(names, attribute.name->text.view());
  if (found == names.end()) return std::nullopt;
  return static_cast<std::size_t>(found - names.begin());
}

bool readLogicalValue(const Attribute& attribute, std::size_t bit,
                      std::uint64_t& logicalAttributes) {
  const std::uint64_t mask = std::uint64_t{1} << bit;
  if (attribute.isAttributeWithGivenLogicalValue(true)) {
    logicalAttributes |= mask;
    return true;
  }
  if (attribute.isAttributeWithGivenLogicalValue(false)) {
    logicalAttributes &= ~mask;
    return true;
  }
  return false;
}

std::size_t accessLevel(const Attribute& attribute, std::span<const fl::ustring_view> levels) {
  const ca::astapi::Node& value = *attribute.value;
  if (value.kind != NodeKind::Identifier && value.kind != NodeKind::CharLiteral) {
    return levels.size();
  }
  const fl::ustring_view text = *tokenText(value);
  const auto name = value.kind == NodeKind::CharLiteral ? withoutQuotes(text) : text;
  const auto found = std::ranges::find(levels, name);
  return found != levels.end() ? static_cast<std::size_t>(found - levels.begin()) : 0;
}

}  // namespace soca::blockParts
