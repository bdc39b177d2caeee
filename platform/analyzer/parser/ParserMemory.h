// Memory that is needed only while a tree is made. Each thread has its own, which is reused for one
// text after another.
#pragma once

#include <vector>

#include "platform/analyzer/text/CharacterMap.h"
#include "platform/analyzer/tree/Ast.h"

namespace ca {

class ParserMemory {
 public:
  static ParserMemory& ofThread();

  // Starts with a new text, and returns its map.
  const CharacterMap& read(fl::ustring_view text);
  // Frees what a text of usual size does not need.
  void shrink();

  const CharacterMap& map() const { return map_; }
  // The elements of the lists that are being parsed; empty between two parses.
  std::vector<const astapi::Node*>& elements() { return elements_; }

 private:
  CharacterMap map_;
  std::vector<const astapi::Node*> elements_;
  std::size_t textSize_ = 0;
};

}  // namespace ca
