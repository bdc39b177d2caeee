// Writes source text with a layout that changes from place to place.
#pragma once

#include <initializer_list>
#include <utility>
#include <vector>

#include "bench/Dice.h"
#include "fuzz/AnalysisProperties.h"
#include "platform/text/UString.h"

namespace soca::fuzz {

// Keeps account of the identifiers that it writes: the tree has to have these and no others.
class SourceWriter {
 public:
  // `dice` must outlive this object.
  explicit SourceWriter(bench::Dice* dice);

  void put(fl::ustring_view text) { text_ += text; }
  // Text that is one identifier.
  void identifier(fl::ustring_view name);
  // A dotted name that is one identifier for each word, and has no other dots.
  void dottedIdentifiers(fl::ustring_view name);

  // Where blanks may stand: blanks, continuations, or nothing.
  void gap();
  // Where a blank has to stand.
  void space();
  // An operator or a delimiter, with gaps around it.
  void putBetweenGaps(fl::ustring_view mark);
  // `count` times what `writeOne` writes, with a comma in front of each but the first and gaps.
  template <class WriteOne>
  void commaSeparated(std::size_t count, const WriteOne& writeOne) {
    for (std::size_t number = 0; number < count; ++number) {
      if (number > 0) put(u",");
      gap();
      writeOne(number);
    }
  }
  // Up to `most` statements or members, each with its separator.
  template <class WriteOne>
  void separated(std::size_t most, const WriteOne& writeOne) {
    const std::size_t count = dice_->roll(most + 1);
    for (std::size_t number = 0; number < count; ++number) {
      indent();
      writeOne();
      separator();
    }
  }
  // A line end, with what may stand in front of it and behind: comments, blank lines.
  void lineEnd();
  // Between two statements or members.
  void separator();
  // Where no separator is needed behind a head that a blank ends as well.
  void optionalSeparator();
  // Indentation, as people have it or not.
  void indent();
  // What may stand at the end of a file.
  void lastLines();

  // Inside lists blanks separate elements, so that gaps are empty there.
  class ListScope {
   public:
    ListScope(SourceWriter* writer, bool isInList)
        : writer_(writer), wasInList_(std::exchange(writer->isInList_, isInList)) {}
    ~ListScope() { writer_->isInList_ = wasInList_; }
    ListScope(const ListScope&) = delete;
    ListScope& operator=(const ListScope&) = delete;

   private:
    SourceWriter* writer_;
    bool wasInList_;
  };
  bool isInList() const { return isInList_; }

  bench::Dice& dice() { return *dice_; }
  bool once(std::size_t in) { return dice_->once(in); }
  fl::ustring_view pick(std::initializer_list<fl::ustring_view> choices) {
    return choices.begin()[dice_->roll(choices.size())];
  }

  const fl::ustring& text() const { return text_; }
  const std::vector<Stretch>& identifiers() const { return identifiers_; }

 private:
  void comment();
  void continuation();
  void blockComment(int depth);

  bench::Dice* dice_;
  fl::ustring_view lineEnd_;
  // One in how many places has an odd layout.
  std::size_t oddness_;
  bool isInList_ = false;
  fl::ustring text_;
  std::vector<Stretch> identifiers_;
};

}  // namespace soca::fuzz
