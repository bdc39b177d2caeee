// The properties of lines that are laid apart.
#pragma once

#include <vector>

#include "platform/text/UString.h"
#include "service/PlannedClass.h"

namespace soca::fuzz {

// Lays all lines of a text without syntax errors apart. Throws a Violation unless all of this
// holds:
// - the tree, its words and the comments are the same;
// - nothing but blanks, line ends and commas has changed;
// - no line has several members or statements any more.
void checkLayout(const fl::ustring& text);

// The text in which the lines are laid apart on which edits of a made conversion meet.
fl::ustring layApart(const PlannedClass& planned, const std::vector<bool>& made);

}  // namespace soca::fuzz
