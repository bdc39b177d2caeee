#include "fuzz/changes/ChangeProperties.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bench/Dice.h"
#include "conversions/passes/PositionMap.h"
#include "fuzz/Violation.h"

namespace soca::fuzz {
namespace {

constexpr std::array<fl::ustring_view, 8> texts = {
    u"", u"x", u"\n", u" (1, 1) logical", u"flag = ~flag;\n", u" ", u"\u00E9\U0001D49C", u"a\nb"};

// An offset of at most `most` after `from`, or one more if that is inside a pair of surrogates.
std::size_t rollOffset(fl::ustring_view text, std::size_t from, std::size_t most,
                       bench::Dice& dice) {
  const std::size_t offset = from + dice.roll(std::min(text.size() - from, most) + 1);
  const bool isInside = offset < text.size() && (text[offset] & 0xFC00U) == 0xDC00U;
  return isInside ? offset + 1 : offset;
}

// Each change has one conversion of its own, from this number on.
TextChanges makeChanges(fl::ustring_view text, std::uint32_t number, bench::Dice& dice) {
  constexpr std::size_t most = 8;
  constexpr std::size_t mostKept = 12;
  constexpr std::size_t mostDeleted = 8;
  TextChanges changes;
  std::size_t next = 0;
  for (std::size_t count = dice.roll(most + 1); count > 0 && next <= text.size(); --count) {
    const std::size_t start = rollOffset(text, next, mostKept, dice);
    const std::size_t end = rollOffset(text, start, mostDeleted, dice);
    const std::size_t length = end - start;
    const fl::ustring_view newText = dice.once(4) ? text.substr(start, length) : dice.pick(texts);
    changes.push_back({start, length, fl::ustring(newText), {number++}});
    next = end + 1;
  }
  return changes;
}

void checkForm(const TextChanges& changes, std::size_t size) {
  std::optional<std::size_t> end;
  for (const TextChange& change : changes) {
    require(!end || *end < change.offset, "changes at {} touch", change.offset);
    end = change.offset + change.length;
    require(*end <= size, "a change ends at {}, after the text", *end);
    require(change.length > 0 || !change.text.empty(), "there is no change at {}", change.offset);
    const auto notAscending = std::ranges::adjacent_find(change.conversions, std::greater_equal());
    require(!change.conversions.empty() && notAscending == change.conversions.end(),
            "the conversions of the change at {} are out of order", change.offset);
  }
}

// --- positions ---

// The place of one character.
LinePlace placeAt(fl::ustring_view text, std::size_t offset) {
  const fl::ustring_view before = text.substr(0, offset);
  const auto line = static_cast<std::size_t>(std::ranges::count(before, u'\n')) + 1;
  const std::size_t column = offset - (before.rfind(u'\n') + 1) + 1;
  return {line, column, column + (offset < text.size() && text[offset] != u'\n' ? 1 : 0), line};
}

bool isSame(const LinePlace& left, const LinePlace& right) {
  return left.line == right.line && left.column == right.column && left.endLine == right.endLine &&
         left.endColumn == right.endColumn;
}

// For some of the unchanged characters of the text.
void checkPositions(const fl::ustring& text, const TextChanges& changes) {
  const fl::ustring newText = applyChanges(text, changes);
  const PositionMap map(text, changes);
  std::size_t newOffset = 0;
  std::size_t next = 0;
  const auto checkUntil = [&](std::size_t end) {
    const std::size_t step = 1 + (end - next) / 4;
    for (std::size_t i = next; i < end; i += step) {
      const std::size_t expected = newOffset + (i - next);
      require(map.toNew(i) == expected && map.toOld(expected) == i, "position {} moves", i);
      const LinePlace oldPlace = placeAt(text, i);
      const LinePlace newPlace = placeAt(newText, expected);
      const auto mapped = map.toNew(oldPlace);
      require(mapped && isSame(*mapped, newPlace), "the place of {} moves", i);
      require(isSame(map.toOld(newPlace), oldPlace), "the place of {} does not come back", i);
    }
    newOffset += end - next;
  };
  for (const TextChange& change : changes) {
    checkUntil(change.offset);
    newOffset += change.text.size();
    next = change.offset + change.length;
  }
  checkUntil(text.size());
}

// --- bytes ---

// The edits, for texts that the encoding has.
void checkEdits(const fl::ustring& text, const TextChanges& changes, fl::EncodingType encoding) {
  const auto oldBytes = fl::encodeFileText(text, encoding);
  const auto newBytes = fl::encodeFileText(applyChanges(text, changes), encoding);
  if (!oldBytes || !newBytes) return;
  std::string bytes;
  std::size_t next = 0;
  for (const FileEdit& edit : placeChanges(text, changes, encoding)) {
    const auto inserted = fl::encodeFileText(fl::decodeFileText(edit.text).text, encoding);
    if (!inserted) return;
    bytes += oldBytes->substr(next, edit.offset - next) + *inserted;
    next = edit.offset + edit.length;
  }
  require(bytes + oldBytes->substr(next) == *newBytes, "the edits give other bytes");
}

}  // namespace

void checkChangeList(const fl::ustring& text, const TextChanges& changes) {
  checkForm(changes, text.size());
  checkPositions(text, changes);
  checkEdits(text, changes, fl::EncodingType::utf8);
  checkEdits(text, changes, fl::EncodingType::latin1);
}

void checkChanges(const fl::ustring& text, std::uint64_t seed) {
  bench::Dice dice(seed);
  const TextChanges pass1 = makeChanges(text, 0, dice);
  const fl::ustring text1 = applyChanges(text, pass1);
  const TextChanges pass2 = makeChanges(text1, 10, dice);
  const fl::ustring text2 = applyChanges(text1, pass2);
  const TextChanges pass3 = makeChanges(text2, 20, dice);
  const TextChanges both = composeChanges(text, pass1, pass2);
  require(applyChanges(text, both) == text2, "two lists give another text than one");
  const fl::ustring text3 = applyChanges(text2, pass3);
  const TextChanges left = composeChanges(text, both, pass3);
  const TextChanges right = composeChanges(text, pass1, composeChanges(text1, pass2, pass3));
  require(applyChanges(text, left) == text3, "three lists give another text than one");
  require(applyChanges(text, right) == text3, "the order of composition matters");
  checkChangeList(text, both);
  checkChangeList(text, left);
  checkForm(right, text.size());
}

}  // namespace soca::fuzz
