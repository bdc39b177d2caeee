// Writes source text with a random layout.
#pragma once

#include <initializer_list>
#include <utility>
#include <vector>

#include "bench/Dice.h"
#include "fuzz/AnalysisProperties.h"
#include "platform/text/UString.h"

namespace soca::fuzz {

// Records the identifiers that it writes: the tree must have exactly these.
class SourceWriter {
 public:
  // `dice` must outlive this object.
  explicit SourceWriter(bench::Dice* dice);

  void put(fl::ustring_view text) { text_ += text; }
  // Text that is one identifier in the tree.
  void identifier(fl::ustring_view name);
  // A dotted name in which each word is one identifier, without other dots.
  void dottedIdentifiers(fl::ustring_view name);

  // At a place where blanks are allowed: blanks, continuations, or nothing.
  void gap();
  // At a place where a blank is required.
  void space();
  // An operator or a delimiter, with gaps around it.
  void putBetweenGaps(fl::ustring_view mark);
  // `count` results of `writeOne`, separated by commas, with gaps.
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
  // After a head that a separator also ends: in a crowded text often one of these.
  void headEnd();
  // A line end, with random comments and blank lines before and after it.
  void lineEnd();
  // A separator between two statements or members.
  void separator();
  // After a head that a blank also ends, and which needs no separator.
  void optionalSeparator();
  // Random indentation, or none.
  void indent();
  // Random lines at the end of a file.
  void lastLines();

  // Inside lists blanks separate elements, so gaps are empty there.
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
  // One place in this many has an unusual layout.
  std::size_t oddness_;
  // Whether there are often several members and statements on one line, as in a third of the texts.
  bool isCrowded_ = false;
  bool isInList_ = false;
  fl::ustring text_;
  std::vector<Stretch> identifiers_;
};

}  // namespace soca::fuzz
