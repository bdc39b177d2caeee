// Finds the identifiers with some name without a walk over the whole tree.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/analyzer/tree/AstDispatcher.h"
#include "platform/analyzer/tree/NodeVisitor.h"
#include "platform/text/TextSearch.h"

namespace ca::astapi {

// A walk to the identifier that begins at a position. Every subtree of a text without syntax errors
// lies within that of its parent, so only those around the position are visited.
class IdentifierSearch : public Visitor<IdentifierSearch, lf::astapi::Const> {
 public:
  explicit IdentifierSearch(const Node* root) : root_(root) {}

  // Null if no identifier begins there.
  const Identifier* findAt(std::uint32_t position) {
    position_ = position;
    found_ = nullptr;
    (*this)(root_);
    return found_;
  }

  bool enter(const Node& node) {
    // An empty subtree ends before its beginning.
    if (position_ < node.position || node.lastPosition < position_) return false;
    // The body of a method need not be read for its name.
    if (node.kind == lf::astapi::NodeKind::FunctionDefinition) return !isName(node);
    if (node.kind != lf::astapi::NodeKind::Identifier) return true;
    if (node.position == position_) found_ = static_cast<const Identifier*>(&node);
    return false;
  }

 private:
  bool isName(const Node& function) {
    const Identifier* name = static_cast<const FunctionDefinition&>(function).name;
    if (name->position == position_) found_ = name;
    return found_ != nullptr;
  }

  const Node* root_;
  std::uint32_t position_ = 0;
  const Identifier* found_ = nullptr;
};

// Calls `visit` with each identifier of that name in the tree of the text, in the order of the
// text, until it returns false. The text must have no syntax errors.
template <class Visit>
void visitIdentifiers(const Node* root, fl::ustring_view text, fl::ustring_view name,
                      const Visit& visit) {
  const fl::TextFinder finder(name);
  IdentifierSearch search(root);
  for (std::size_t place = finder.find(text); place != fl::ustring_view::npos;
       place = finder.find(text, place + 1)) {
    const Identifier* found = search.findAt(static_cast<std::uint32_t>(place));
    if (found != nullptr && found->text.view() == name && !visit(*found)) return;
  }
}

}  // namespace ca::astapi
