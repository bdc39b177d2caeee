// Small values in syntax nodes: the written form of a token, the id of a name, and the end of a
// block.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/text/UString.h"

namespace ca::astapi {

// The written form of a token, exactly as in the file; a literal keeps its quotes. Points into the
// text of the analysis result, which must outlive it.
class SourceText {
 public:
  SourceText() = default;
  explicit SourceText(fl::ustring_view text)
      : text_(text.data()), length_(static_cast<std::uint32_t>(text.size())) {}

  fl::ustring getText() const { return fl::ustring(text_, length_); }
  fl::ustring_view view() const { return {text_, length_}; }

 private:
  const char16_t* text_ = nullptr;
  std::uint32_t length_ = 0;
};

namespace internal {

// Provides names as strings.
class NameStrings {
 public:
  NameStrings() = default;
  NameStrings(const NameStrings&) = delete;
  NameStrings& operator=(const NameStrings&) = delete;
  virtual ~NameStrings() = default;

  // Valid as long as this object. May be called by several threads at once.
  virtual const fl::ustring& stringOf(fl::ustring_view name) const = 0;
};

}  // namespace internal

// The id of a name: two are equal if their names are. An id taken from a syntax node must not
// outlive the analysis result.
class StringId {
 public:
  StringId() = default;
  explicit StringId(const char16_t* name) : StringId(fl::ustring(name)) {}
  explicit StringId(const fl::ustring& name);
  // The id of a name in a text. `strings` makes the string when it is first asked for, because few
  // names are. Both must outlive the id.
  StringId(fl::ustring_view name, const internal::NameStrings* strings)
      : text_(name), strings_(std::shared_ptr<const internal::NameStrings>(), strings) {}

  // The name; the empty string for a default-constructed id.
  const fl::ustring& getString() const;

  friend bool operator==(const StringId& left, const StringId& right) {
    return left.text_.view() == right.text_.view();
  }

 private:
  SourceText text_;
  // Owns the string of a name that is part of no text.
  std::shared_ptr<const internal::NameStrings> strings_;
};

// The position of the `end` of a block.
class ClosingPosition {
 public:
  ClosingPosition() = default;
  explicit ClosingPosition(std::uint32_t position) : position_(position) {}

  // The position of the last character of the `end` keyword.
  std::uint32_t getClosingPosition() const { return position_; }

 private:
  std::uint32_t position_ = 0;
};

}  // namespace ca::astapi
