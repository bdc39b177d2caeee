// What properties blocks and methods blocks have in common: the parts of their text, and how their
// attributes are read.
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

// The keyword and, with at least one attribute, all through the closing parenthesis.
Extent openingExtent(const ca::AnalysisResult& analysis, const BlockNode& block,
                     fl::ustring_view keyword);

// The attribute list with its parentheses; without attributes the place just behind the keyword.
Extent attributesExtent(const ca::AnalysisResult& analysis, const BlockNode& block,
                        fl::ustring_view keyword);

// The `end` keyword.
Extent closingExtent(const ca::AnalysisResult& analysis, const BlockNode& block);

// The attributes in source order, as written.
std::vector<AttributeText> attributeTexts(const ca::AnalysisResult& analysis,
                                          const BlockNode& block);

// Whether the first attribute of that name states a logical value, whichever it is.
bool hasLogicalAttribute(const BlockNode& block, fl::ustring_view name);

// Whether the first attribute of that name states that value.
bool hasLogicalAttributeValue(const BlockNode& block, fl::ustring_view name, bool value);

// The index of the attribute's name in `names`; nothing for a name that is not there.
std::optional<std::size_t> indexOfAttribute(const Attribute& attribute,
                                            std::span<const fl::ustring_view> names);

// Takes over into `logicalAttributes` what the attribute says of bit `bit`. False if it states no
// logical value, in which case nothing changes.
bool readLogicalValue(const Attribute& attribute, std::size_t bit,
                      std::uint64_t& logicalAttributes);

// The index in `levels` of the access level that the attribute's value names, with or without
// quotes: 0 for a name that is not there, and the number of levels for any other expression.
std::size_t accessLevel(const Attribute& attribute, std::span<const fl::ustring_view> levels);

}  // namespace soca::blockParts
