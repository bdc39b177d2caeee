// One method of a class, as its function or signature says.
#pragma once

#include <cstdint>
#include <vector>

#include "model/ClassContext.h"
#include "model/Extent.h"
#include "model/SourcePosition.h"
#include "platform/text/UString.h"

namespace soca {

class MethodsBlock;

// A handle on one function of a methods block. Every answer is computed when it is asked for. The
// block that the handle points at owns it; the syntax tree and the context must outlive it.
//
// Where an operation is for definitions only, a mere signature stops the process.
class Method {
 public:
  Method(const ca::astapi::FunctionDeclaration* node, const MethodsBlock* block,
         const ClassContext* context)
      : node_(node), block_(block), context_(context) {}

  // A dotted name, as that of an accessor, comes whole.
  fl::ustring getName() const { return fl::ustring(nameView()); }
  // The name without a copy, valid as long as the analysis.
  fl::ustring_view nameView() const { return node_->name->text.view(); }
  const MethodsBlock& getBlock() const { return *block_; }
  // False for a signature without a body.
  bool isFunctionDefinition() const;

  // From `function` through the closing `end`.
  Extent getFullExtent() const;
  Extent getNameExtent() const;

  // As written: the object and each ignored `~` count. For definitions.
  std::uint64_t getNumberOfInputs() const;
  // For definitions.
  std::uint64_t getNumberOfOutputs() const;
  // The name of the output at the zero-based `index`. For definitions.
  fl::ustring getOutputName(std::int32_t index) const;
  // From the first statement to one column in front of the closing `end`; for an `end` in the first
  // column that column is the all-ones value. Empty, and there, without statements. For
  // definitions.
  Extent getBodyExtent() const;

  // Whether the body is one assignment of `true` or `false` to the output; `varargout` is assigned
  // to as `varargout{1}`. Then `constant` becomes the value and `start` and `end` its span;
  // otherwise they stay as they are. For definitions.
  bool isSimpleConstantAssignment(const fl::ustring& outputName, bool& constant,
                                  SourcePosition& start, SourcePosition& end) const;
  // The `return` statements of the method in source order, less those of nested functions that are
  // statements of the body itself. For definitions.
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
