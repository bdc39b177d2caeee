// Edits of a method. Included only by ImplDeprecationFactory.cpp.
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

// Deletes a method, but not the blanks before it and the line end after it.
class DeleteMethodAction : public SingleAction {
 public:
  explicit DeleteMethodAction(const Method* method) : method_(method) {}

  Extent getExtent() const override { return method_->getFullExtent(); }
  fl::ustring getText() const override { return u""; }

 private:
  const Method* method_;
};

// Inserts a line that negates the result before a `return` or the closing `end`, which moves to a
// line of its own with its old indentation:
//
//                                   flag = ~flag;
//           return           ->     return
class NegateReturnValueAction : public SingleAction {
 public:
  // `outputName` is the variable to negate. With `atMethodEnd`, for the closing `end`, the new line
  // is indented like the statements of the body.
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

// Negates the constant that a method returns.
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
