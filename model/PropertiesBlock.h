// One `properties` block of a class.
#pragma once

#include <cstdint>
#include <vector>

#include "model/AttributeText.h"
#include "model/ClassContext.h"
#include "model/Extent.h"
#include "model/Property.h"
#include "platform/text/UString.h"

namespace soca {

// The attributes that are recognised; the values are the bit numbers of a block's logical
// attributes.
enum class PropertyAttributeType : std::uint32_t {
  AbortSet,
  Abstract,
  Constant,
  Dependent,
  GetObservable,
  Hidden,
  NonCopyable,
  SetObservable,
  Transient,
  PositiveInteger,
  Logical,
  Nontunable,
  DiscreteState,
  ContinuousState,
  ConstrainedSet,
  EnumerationUsingMessageCatalog,
  EnumerationUsingDisplayStrings,
  DynamicEnumeration,
  PropertyPortPolicy,
  ControlledDynamicEnumerations,
  // The types from here on take an access level.
  Access,
  GetAccess,
  SetAccess,
};

enum class PropertyAccessType : std::uint32_t {
  publicAccess,
  protectedAccess,
  privateAccess,
  immutable,
  // An expression that is neither a name nor a literal; its value is not known.
  otherExpression,
};

struct PropertyAccess {
  PropertyAccessType getAccess = PropertyAccessType::publicAccess;
  PropertyAccessType setAccess = PropertyAccessType::publicAccess;

  // An unknown access is unequal to every access, including itself.
  friend bool operator==(const PropertyAccess& left, const PropertyAccess& right) {
    return left.getAccess == right.getAccess && left.setAccess == right.setAccess &&
           left.getAccess != PropertyAccessType::otherExpression &&
           left.setAccess != PropertyAccessType::otherExpression;
  }
};

// The name as written in source, for the types before `Access`.
fl::ustring propertyAttributeName(PropertyAttributeType attribute);

// Owns its properties. The syntax tree and the context must outlive it. It can be moved with its
// properties, but not copied.
class PropertiesBlock {
 public:
  PropertiesBlock(const ca::astapi::PropertiesBlockNode* node, const ClassContext* context);
  PropertiesBlock(PropertiesBlock&& other) noexcept;
  PropertiesBlock& operator=(PropertiesBlock&& other) noexcept;
  ~PropertiesBlock() = default;

  const ca::astapi::PropertiesBlockNode& getNode() const { return *node_; }
  // In source order.
  const std::vector<Property>& getProperties() const { return properties_; }
  std::uint64_t getNumberOfProperties() const { return properties_.size(); }
  // The first property of that exact name, or null.
  const Property* findProperty(const fl::ustring& name) const;

  std::uint64_t getNumberOfAttributes() const { return node_->attributes.size(); }
  // In source order, as written.
  std::vector<AttributeText> getAttributes() const;
  // The effective bits of the attributes; of two attributes of one name the last one applies.
  std::uint64_t getLogicalAttributes() const { return logicalAttributes_; }
  const PropertyAccess& getAccess() const { return access_; }
  // Whether the first attribute of that name states a logical value, true or false.
  bool hasLogicalAttribute(PropertyAttributeType attribute) const;
  // Whether the first attribute of that name states that value.
  bool hasLogicalAttributeValue(PropertyAttributeType attribute, bool value) const;
  bool hasSameLogicalAttributes(std::uint64_t logicalAttributes) const {
    return logicalAttributes_ == logicalAttributes;
  }
  bool hasSameAccess(const PropertyAccess& access) const { return access_ == access; }

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
  // Sets the properties' pointers to this block.
  void adoptProperties();

  const ca::astapi::PropertiesBlockNode* node_;
  const ClassContext* context_;
  std::uint64_t logicalAttributes_ = 0;
  PropertyAccess access_;
  std::vector<Property> properties_;
};

}  // namespace soca
