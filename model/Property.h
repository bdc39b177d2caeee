// One property of a class, from its declaration.
#pragma once

#include <cstddef>
#include <cstdint>

#include "metadata/MetaClass.h"
#include "model/ClassContext.h"
#include "model/Extent.h"
#include "platform/text/UString.h"

namespace soca {

class DotIndex;
class PropertiesBlock;

// A handle of one declaration, which has at most these parts, in this order:
//
//   Gain (1, 1) double {mustBePositive} = 3;
//   ^~~~ ^~~~~~ ^~~~~~ ^~~~~~~~~~~~~~~~   ^
//   name size   class  validators         default value
//
// The extent of a missing part is empty, at the place where it would be inserted. Results are
// computed by each call. The block that the handle points to owns it; the syntax tree and the
// context must outlive it.
class Property {
 public:
  Property(const ca::astapi::PropertyNode* node, const PropertiesBlock* block,
           const ClassContext* context)
      : node_(node), block_(block), context_(context) {}

  fl::ustring getName() const { return fl::ustring(nameView()); }
  // The name without a copy, valid as long as the analysis.
  fl::ustring_view nameView() const { return node_->name->text.view(); }
  const PropertiesBlock& getBlock() const { return *block_; }
  const ca::astapi::PropertyNode& getNode() const { return *node_; }

  // From the class's metadata of the property; exceptions are passed on.
  ConstrainedSetInfo getConstrainedSetInfo() const;
  bool isAbstract() const;
  bool isDependent() const;

  bool hasDefaultValue() const { return node_->defaultValue != nullptr; }
  bool hasSize() const;
  bool hasClass() const;
  // Whether there is at least one validator, not just empty braces.
  bool hasValidators() const;
  std::uint64_t getNumberOfValidators() const;
  bool hasValidatorBraces() const;
  // Whether a validator that is a plain name, or a call of one, has that name. The name of any
  // other validator is empty.
  bool hasValidator(const fl::ustring& name) const;
  // Whether the default value is a call of a class whose name begins with that of the StringSet,
  // with only lists and double-quoted literals as arguments.
  bool hasStringSetDefault() const;
  // Whether the class has a method `get.<name>`.
  bool hasGetAccessor() const;
  // Whether the first `.<name>` in the text of the file, comments and literals included, is not
  // followed by an ASCII letter or digit. False for a property with a get accessor.
  bool isReferencedThroughDot() const;
  // The same, by an index of that text whose names include the property's name.
  bool isReferencedThroughDot(const DotIndex& index) const;

  // The declaration without its terminator.
  Extent getFullExtent() const;
  // With the parentheses.
  Extent getSizeExtent() const;
  Extent getClassExtent() const;
  // With the braces.
  Extent getValidatorsExtent() const;
  // From the end of the name to the end of the last of size, class and validators; without any of
  // them to the end of the declaration, including the default value.
  Extent getValidationExtent() const;

 private:
  friend class PropertiesBlock;

  // Whether the first `.<name>` is a reference; `next` is the position after it, or npos.
  bool isReferencedInFrontOf(std::size_t next) const;
  SourcePosition nameEnd() const;
  SourcePosition sizeEnd() const;
  SourcePosition classEnd() const;
  // The end of the last part before the validators.
  SourcePosition validatorsPlace() const;

  const ca::astapi::PropertyNode* node_;
  const PropertiesBlock* block_;
  const ClassContext* context_;
};

}  // namespace soca
