// Functions that properties blocks and methods blocks share: the extents of their parts, and the
// reading of their attributes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "model/AttributeText.h"
#include "model/Extent.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"

namespace soca::blockParts {

using ca::astapi::Attribute;
using ca::astapi::BlockNode;

// The keyword and, if there is an attribute, the text through the closing parenthesis.
Extent openingExtent(const ca::AnalysisResult& analysis, const BlockNode& block,
                     fl::ustring_view keyword);

// The attribute list with its parentheses; without attributes the place just after the keyword.
Extent attributesExtent(const ca::AnalysisResult& analysis, const BlockNode& block,
                        fl::ustring_view keyword);

// The `end` keyword.
Extent closingExtent(const ca::AnalysisResult& analysis, const BlockNode& block);

// The attributes in source order, as written.
std::vector<AttributeText> attributeTexts(const ca::AnalysisResult& analysis,
                                          const BlockNode& block);

// Whether the first attribute of that name states a logical value, true or false.
bool hasLogicalAttribute(const BlockNode& block, fl::ustring_view name);

// Whether the first attribute of that name states that value.
bool hasLogicalAttributeValue(const BlockNode& block, fl::ustring_view name, bool value);

// The index of the attribute's name in `names`; empty if it is not in there.
std::optional<std::size_t> indexOfAttribute(const Attribute& attribute,
                                            std::span<const fl::ustring_view> names);

// Sets bit `bit` of `logicalAttributes` to the logical value of the attribute. Returns false and
// changes nothing if the attribute states no logical value.
bool readLogicalValue(const Attribute& attribute, std::size_t bit,
                      std::uint64_t& logicalAttributes);

// The index in `levels` of the access level that the attribute's value names, with or without
// quotes: 0 for a name that is not in there, and the number of levels for any other expression.
std::size_t accessLevel(const Attribute& attribute, std::span<const fl::ustring_view> levels);

}  // namespace soca::blockParts
