// The conversions that the rules find in a class, and the choice of those to make.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "model/Extent.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"
#include "rules/RuleFamilies.h"

namespace soca {

// The conversion of one subject. The pointers are into the analysis of the class, which must
// outlive it; pointers without a meaning for the kind are null.
struct RuleConversion {
  ConversionKindType kind;
  // The block that loses an attribute or is deleted.
  const ca::astapi::PropertiesBlockNode* block = nullptr;
  // The property whose declaration gets the members of the set. For a block that loses an
  // attribute, the first property that is not a companion, which names the conversion.
  const ca::astapi::PropertyNode* property = nullptr;
  // The property that holds the set. It is deleted if all conversions that use it are made.
  const ca::astapi::PropertyNode* companion = nullptr;
  // The method that is renamed or deleted.
  const ca::astapi::FunctionDeclaration* method = nullptr;
  // For a method that is renamed.
  fl::ustring_view newName;
  // For a block that loses an attribute, whether the declarations of its properties replace it:
  // then it was not `false`.
  bool isTakenOver = false;
};

// The action is a result of the conversion, alone or together with others. Both are indices into
// the lists of the class.
struct ActionOwner {
  std::uint32_t action = 0;
  std::uint32_t conversion = 0;

  friend bool operator==(const ActionOwner&, const ActionOwner&) = default;
};

// The conversions of a class that are to be made.
class ConversionChoice {
 public:
  // All.
  ConversionChoice() = default;
  // The conversions whose index has `true`. `made` must outlive this object.
  explicit ConversionChoice(const std::vector<bool>* made) : made_(made) {}

  // The same choice for a family whose first conversion has the index `first` in the class.
  ConversionChoice countedFrom(std::size_t first) const {
    ConversionChoice choice = *this;
    choice.first_ += first;
    return choice;
  }

  bool isMade(std::size_t conversion) const {
    if (made_ == nullptr) return true;
    const std::size_t index = first_ + conversion;
    return index < made_->size() && (*made_)[index];
  }

 private:
  const std::vector<bool>* made_ = nullptr;
  std::size_t first_ = 0;
};

// A property or method of the class file, as values.
struct Member {
  fl::ustring name;
  // The whole declaration, without its terminator.
  Extent extent;
  Extent nameExtent;

  friend bool operator==(const Member&, const Member&) = default;
};

// The members that the conversion concerns, in the order of the file: the properties of the block;
// the property and its companion; or the method. Empty for the superclass list.
std::vector<Member> findMembers(const ca::AnalysisResult& analysis,
                                const RuleConversion& conversion);

// The extent of the subject: of the block, the property, the method, or the superclass list.
Extent findExtent(const ca::AnalysisResult& analysis, const RuleConversion& conversion);

// The id of each conversion, unique in its class: the kind, and after a colon the name of the
// member. It does not depend on which conversions are made. If several declarations have the name,
// `~` and the number of the declaration follow; a block without properties has its number among
// such blocks.
//
//   mixins   attributes/string-set:Mode   attributes/logical:Gain~2   attributes/empty-block:1
std::vector<fl::ustring> makeConversionIds(const ca::AnalysisResult& analysis,
                                           const std::vector<RuleConversion>& conversions);

}  // namespace soca
