// The properties of changes in a text over several passes.
#pragma once

#include <cstdint>

#include "conversions/passes/TextChanges.h"
#include "platform/text/UString.h"

namespace soca::fuzz {

// Makes random changes of the text, the same for the same seed, changes of the result, and of that
// again. Throws a Violation unless all of this holds:
// - changes that are composed give the text of one list after the other, in any grouping;
// - they are in order, with unchanged text between them, and name their conversions;
// - positions and places in unchanged text are mapped to the same character and back;
// - the edits of the file give its new bytes.
void checkChanges(const fl::ustring& text, std::uint64_t seed);

// The same for one list of changes of the text.
void checkChangeList(const fl::ustring& text, const TextChanges& changes);

}  // namespace soca::fuzz
