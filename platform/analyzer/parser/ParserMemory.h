// Memory that only the making of a tree needs. Each thread has its own, which serves for one text
// after the other.
#pragma once

#include <vector>

#include "platform/analyzer/text/CharacterMap.h"
#include "platform/analyzer/tree/Ast.h"

namespace ca {

class ParserMemory {
 public:
  static ParserMemory& ofThread();

  // Begins with a new text, and returns its map.
  const CharacterMap& read(fl::ustring_view text);
  // Gives back what no usual text needs.
  void shrink();

  const CharacterMap& map() const { return map_; }
  // The elements of the lists under way; empty between two parses.
  std::vector<const astapi::Node*>& elements() { return elements_; }

 private:
  CharacterMap map_;
  std::vector<const astapi::Node*> elements_;
  std::size_t textSize_ = 0;
};

}  // namespace ca
