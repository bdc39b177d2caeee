// One `methods` block of a class.
#pragma once

#include <cstdint>
#include <vector>

#include "model/AttributeText.h"
#include "model/ClassContext.h"
#include "model/Extent.h"
#include "model/Method.h"
#include "platform/text/UString.h"

namespace soca {

// The attributes that are recognised; the values are the bit numbers of a block's logical
// attributes.
enum class MethodAttributeType : std::uint32_t {
  Abstract,
  Hidden,
  Sealed,
  Static,
  // Takes an access level.
  Access,
};

enum class MethodAccessType : std::uint32_t {
  publicAccess,
  protectedAccess,
  privateAccess,
  // An expression that is neither a name nor a literal; its value is not known.
  otherExpression,
};

// The name as written in source, for the types before `Access`.
fl::ustring methodAttributeName(MethodAttributeType attribute);

// Like PropertiesBlock. Owns its methods. The syntax tree and the context must outlive it. It can
// be moved with its methods, but not copied.
class MethodsBlock {
 public:
  MethodsBlock(const ca::astapi::MethodsBlockNode* node, const ClassContext* context);
  MethodsBlock(MethodsBlock&& other) noexcept;
  MethodsBlock& operator=(MethodsBlock&& other) noexcept;
  ~MethodsBlock() = default;

  const ca::astapi::MethodsBlockNode& getNode() const { return *node_; }
  // In source order.
  const std::vector<Method>& getMethods() const { return methods_; }
  std::uint64_t getNumberOfMethods() const { return methods_.size(); }
  // The first method of that exact name, or null.
  const Method* findMethod(const fl::ustring& name) const;

  std::uint64_t getNumberOfAttributes() const { return node_->attributes.size(); }
  // In source order, as written.
  std::vector<AttributeText> getAttributes() const;
  // The access of all methods of the block.
  MethodAccessType getAccess() const { return access_; }
  // Whether the first attribute of that name states a logical value, true or false.
  bool hasLogicalAttribute(MethodAttributeType attribute) const;
  // Whether the first attribute of that name states that value.
  bool hasLogicalAttributeValue(MethodAttributeType attribute, bool value) const;
  // The effective bits of the attributes; of two attributes of one name the last one applies.
  std::uint64_t getLogicalAttributes() const { return logicalAttributes_; }
  bool hasSameLogicalAttributes(std::uint64_t logicalAttributes) const {
    return logicalAttributes_ == logicalAttributes;
  }

  // From the keyword through `end`.
  Extent getFullExtent() const;
  // The keyword and, if there is an attribute, the text through the closing parenthesis.
  Extent getOpeningExtent() const;
  // The attribute list with its parentheses; without attributes the place just after the keyword.
  Extent getAttributesExtent() const;
  // The `end` keyword.
  Extent getClosingExtent() const;

 private:
  void readAttribute(const ca::astapi::Attribute& attribute);
  // Sets the methods' pointers to this block.
  void adoptMethods();

  const ca::astapi::MethodsBlockNode* node_;
  const ClassContext* context_;
  std::uint64_t logicalAttributes_ = 0;
  MethodAccessType access_ = MethodAccessType::publicAccess;
  std::vector<Method> methods_;
};

}  // namespace soca
