// Edits of a method. Part of ImplDeprecationFactory.cpp, and included by nothing else.
#pragma once

#include <cstddef>
#include <utility>

#include "model/Extent.h"
#include "model/Method.h"
#include "model/SourcePosition.h"
#include "platform/text/UString.h"
#include "rules/Action.h"

namespace soca {
namespace {

// Renames a method in its `function` line.
class RenameMethodAction : public SingleAction {
 public:
  RenameMethodAction(fl::ustring newName, const Method* method)
      : newName_(std::move(newName)), method_(method) {}

  Extent getExtent() const override { return method_->getNameExtent(); }
  fl::ustring getText() const override { return newName_; }

 private:
  fl::ustring newName_;
  const Method* method_;
};

// Deletes a method. The blanks in front of it and the line end behind it stay.
class DeleteMethodAction : public SingleAction {
 public:
  explicit DeleteMethodAction(const Method* method) : method_(method) {}

  Extent getExtent() const override { return method_->getFullExtent(); }
  fl::ustring getText() const override { return u""; }

 private:
  const Method* method_;
};

// Puts a line that turns the result round in front of a `return` or of the closing `end`, which
// then stands at its old column on a line of its own:
//
//                                   flag = ~flag;
//           return           ->     return
class NegateReturnValueAction : public SingleAction {
 public:
  // `outputName` is what to assign to. In front of the closing `end`, `atMethodEnd` indents the new
  // line as far as the statements of the body.
  NegateReturnValueAction(fl::ustring outputName, SourcePosition position, const Method* method,
                          bool atMethodEnd)
      : outputName_(std::move(outputName)),
        position_(position),
        method_(method),
        atMethodEnd_(atMethodEnd) {}

  Extent getExtent() const override { return {position_, position_}; }
  fl::ustring getText() const override {
    const fl::ustring bodyIndent = atMethodEnd_ ? u"    " : u"";
    const fl::ustring oldIndent(static_cast<std::size_t>(position_.column), u' ');
    return bodyIndent + outputName_ + u" = ~" + outputName_ + u";\n" + oldIndent;
  }

 private:
  fl::ustring outputName_;
  SourcePosition position_;
  [[maybe_unused]] const Method* method_;
  bool atMethodEnd_;
};

// Turns the one constant round that a method gives back.
class NegateReturnValueActionSimpleAssignment : public SingleAction {
 public:
  NegateReturnValueActionSimpleAssignment(Extent extent, const Method* method, bool newValue)
      : extent_(extent), method_(method), newValue_(newValue) {}

  Extent getExtent() const override { return extent_; }
  fl::ustring getText() const override { return newValue_ ? u"true" : u"false"; }

 private:
  Extent extent_;
  [[maybe_unused]] const Method* method_;
  bool newValue_;
};

}  // namespace
}  // namespace soca
