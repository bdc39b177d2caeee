// One method of a class, defined or declared.
#pragma once

#include <cstdint>
#include <vector>

#include "model/ClassContext.h"
#include "model/Extent.h"
#include "model/SourcePosition.h"
#include "platform/text/UString.h"

namespace soca {

class MethodsBlock;

// A handle of one function of a methods block. Results are computed by each call. The block that
// the handle points to owns it; the syntax tree and the context must outlive it.
//
// A function that is for definitions ends the process when it is called for a signature.
class Method {
 public:
  Method(const ca::astapi::FunctionDeclaration* node, const MethodsBlock* block,
         const ClassContext* context)
      : node_(node), block_(block), context_(context) {}

  // The whole name, which is dotted for an accessor.
  fl::ustring getName() const { return fl::ustring(nameView()); }
  // The name without a copy, valid as long as the analysis.
  fl::ustring_view nameView() const { return node_->name->text.view(); }
  const MethodsBlock& getBlock() const { return *block_; }
  const ca::astapi::FunctionDeclaration& getNode() const { return *node_; }
  // False for a signature without a body.
  bool isFunctionDefinition() const;

  // From `function` through the closing `end`.
  Extent getFullExtent() const;
  Extent getNameExtent() const;

  // As written: includes the object and each ignored `~`. For definitions.
  std::uint64_t getNumberOfInputs() const;
  // For definitions.
  std::uint64_t getNumberOfOutputs() const;
  // The name of the output at the zero-based `index`. For definitions.
  fl::ustring getOutputName(std::int32_t index) const;
  // From the first statement to one column before the closing `end`; if the `end` is in the first
  // column, that column is the all-ones value. Without statements the extent is empty at that
  // place. For definitions.
  Extent getBodyExtent() const;

  // Whether the body is a single assignment of `true` or `false` to the output; `varargout` is
  // assigned as `varargout{1}`. If so, sets `constant` to the value and `start` and `end` to its
  // extent; otherwise leaves them unchanged. For definitions.
  bool isSimpleConstantAssignment(const fl::ustring& outputName, bool& constant,
                                  SourcePosition& start, SourcePosition& end) const;
  // The `return` statements of the method in source order, without those of nested functions that
  // are statements of the body itself. For definitions.
  std::vector<Extent> findReturnStatements() const;
  // Whether the method's name occurs as an identifier anywhere else in the file.
  bool isMethodReferencedInSysObj() const;

 private:
  friend class MethodsBlock;

  const ca::astapi::FunctionDefinition& definition() const;

  const ca::astapi::FunctionDeclaration* node_;
  const MethodsBlock* block_;
  const ClassContext* context_;
};

}  // namespace soca
