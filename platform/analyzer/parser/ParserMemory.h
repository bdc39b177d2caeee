// Memory that is needed only while a tree is made. Each thread has its own, which is reused for one
// text after another.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/analyzer/text/CharacterMap.h"
#include "platform/analyzer/tree/Ast.h"

namespace ca {

class ParserMemory {
 public:
  static ParserMemory& ofThread();

  // Starts with a new text, and returns its map.
  const CharacterMap& read(fl::ustring_view text);
  // The same for a part of it: from the code unit `begin` up to `end`. Do not shrink the memory
  // after each of many parts: there is room for the whole text.
  void readPart(fl::ustring_view text, std::uint32_t begin, std::uint32_t end);
  // Frees what a text of usual size does not need.
  void shrink();

  const CharacterMap& map() const { return map_; }
  // The elements of the lists that are being parsed; empty between two parses.
  std::vector<const astapi::Node*>& elements() { return elements_; }

 private:
  CharacterMap map_;
  std::vector<const astapi::Node*> elements_;
};

}  // namespace ca
