// The changes that one or several passes over a class make in its text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "conversions/FileEdits.h"
#include "platform/text/FileText.h"
#include "platform/text/UString.h"
#include "service/PlannedClass.h"

namespace soca {

// A part of the old text and its replacement; either may be empty.
struct TextChange {
  // In UTF-16 code units of the old text.
  std::size_t offset = 0;
  std::size_t length = 0;
  fl::ustring text;
  // The numbers of the conversions that make it, ascending.
  std::vector<std::uint32_t> conversions;

  friend bool operator==(const TextChange&, const TextChange&) = default;
};

// In the order of the text, with unchanged text between any two of them.
using TextChanges = std::vector<TextChange>;

// The changes of one pass, from the text before it to the new text of `planned`, which must have
// its new lines; without a new text there are none. `numbers` has one number for each conversion of
// `planned`, made or not. What the engine changes with any edit belongs to all that are made.
TextChanges findTextChanges(const PlannedClass& planned, std::span<const std::uint32_t> numbers);

// The changes of `first` and then `second`, as changes of the old text. `second` are changes of the
// text after `first`. Changes that touch become one, made by the conversions of both, without the
// tokens at its ends that are the old ones again.
//
//   [a|x] b   and   x[ b|]   ->   [a b|x]
TextChanges composeChanges(fl::ustring_view oldText, const TextChanges& first,
                           const TextChanges& second);

// The new text.
fl::ustring applyChanges(fl::ustring_view oldText, const TextChanges& changes);

// The changes as edits of a file of this encoding; `action` has no meaning in them.
std::vector<FileEdit> placeChanges(fl::ustring_view oldText, const TextChanges& changes,
                                   fl::EncodingType encoding);

}  // namespace soca
