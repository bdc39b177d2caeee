// One property of a class, as its declaration says.
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

// A handle on one declaration, which has at most these parts, in this order:
//
//   Gain (1, 1) double {mustBePositive} = 3;
//   ^~~~ ^~~~~~ ^~~~~~ ^~~~~~~~~~~~~~~~   ^
//   name size   class  validators         default value
//
// A part that is missing has an empty extent at the place where it would go in. Every answer is
// computed when it is asked for. The block that the handle points at owns it; the syntax tree and
// the context must outlive it.
class Property {
 public:
  Property(const ca::astapi::PropertyNode* node, const PropertiesBlock* block,
           const ClassContext* context)
      : node_(node), block_(block), context_(context) {}

  fl::ustring getName() const { return fl::ustring(nameView()); }
  // The name without a copy, valid as long as the analysis.
  fl::ustring_view nameView() const { return node_->name->text.view(); }
  const PropertiesBlock& getBlock() const { return *block_; }

  // What the class's metadata says of the property of this name; what it throws goes through.
  ConstrainedSetInfo getConstrainedSetInfo() const;
  bool isAbstract() const;
  bool isDependent() const;

  bool hasDefaultValue() const { return node_->defaultValue != nullptr; }
  bool hasSize() const;
  bool hasClass() const;
  // Whether there is at least one validator; empty braces hold none.
  bool hasValidators() const;
  std::uint64_t getNumberOfValidators() const;
  bool hasValidatorBraces() const;
  // Whether a validator that is a plain name, or a call of one, has that name. A validator of any
  // other form has the empty name.
  bool hasValidator(const fl::ustring& name) const;
  // Whether the default value is a call of a class whose name begins as that of the StringSet does,
  // with nothing but lists and double-quoted literals as arguments.
  bool hasStringSetDefault() const;
  // Whether the class has a method `get.<name>`.
  bool hasGetAccessor() const;
  // Whether the first `.<name>` in the text of the file, comments and literals included, is not
  // followed by an ASCII letter or digit. False for a property with a get accessor.
  bool isReferencedThroughDot() const;
  // The same, with an index of that text in which the property's name is.
  bool isReferencedThroughDot(const DotIndex& index) const;

  // The declaration without its terminator.
  Extent getFullExtent() const;
  // With the parentheses.
  Extent getSizeExtent() const;
  Extent getClassExtent() const;
  // With the braces.
  Extent getValidatorsExtent() const;
  // From the name's end to the end of the last of size, class and validators; with none of them to
  // the end of the declaration, default value included.
  Extent getValidationExtent() const;

 private:
  friend class PropertiesBlock;

  // Whether what stands behind the first `.<name>`, or npos, makes it a reference.
  bool isReferencedInFrontOf(std::size_t behind) const;
  SourcePosition nameEnd() const;
  SourcePosition sizeEnd() const;
  SourcePosition classEnd() const;
  // The end of the last part in front of the validators.
  SourcePosition validatorsPlace() const;

  const ca::astapi::PropertyNode* node_;
  const PropertiesBlock* block_;
  const ClassContext* context_;
};

}  // namespace soca
