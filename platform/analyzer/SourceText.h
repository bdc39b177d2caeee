// Small values that syntax nodes hold: the written form of a token, an interned name, and where a
// block ends.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

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

// One name of a name table. `owners` counts the StringIds that share a name of no table; a name in
// a table belongs to the table, and its text is that of the analysis.
struct InternedName {
  static constexpr std::uint32_t ownedByTable = 0xFFFFFFFF;

  const char16_t* text = nullptr;
  std::uint32_t length = 0;
  std::uint32_t hash = 0;
  mutable std::atomic<std::uint32_t> owners = ownedByTable;
  // The name as a string, made when somebody first asks for one.
  mutable std::atomic<const fl::ustring*> string = nullptr;
  // The name that its table took up before it.
  const InternedName* previous = nullptr;

  fl::ustring_view view() const { return {text, length}; }
};

}  // namespace internal

// An interned name. Ids of one analysis compare by address, ids made elsewhere by hash and text. An
// id taken from a syntax node must not outlive the analysis result.
class StringId {
 public:
  StringId() = default;
  explicit StringId(const char16_t* name) : StringId(fl::ustring(name)) {}
  explicit StringId(const fl::ustring& name);
  explicit StringId(const internal::InternedName* name) : name_(name) {}
  StringId(const StringId& other) : name_(other.name_) { share(); }
  StringId(StringId&& other) noexcept : name_(other.name_) { other.name_ = nullptr; }
  StringId& operator=(StringId other) noexcept {
    std::swap(name_, other.name_);
    return *this;
  }
  ~StringId() { release(); }

  // The name; the empty string for a default-constructed id.
  const fl::ustring& getString() const;

  friend bool operator==(const StringId& left, const StringId& right) {
    if (left.name_ == right.name_) return true;
    if (left.name_ == nullptr || right.name_ == nullptr) return left.isEmpty() && right.isEmpty();
    return left.name_->hash == right.name_->hash && left.name_->view() == right.name_->view();
  }

 private:
  bool isEmpty() const { return name_ == nullptr || name_->length == 0; }
  void share() const {
    if (name_ != nullptr && name_->owners != internal::InternedName::ownedByTable) addOwner();
  }
  void release() const {
    if (name_ != nullptr && name_->owners != internal::InternedName::ownedByTable) removeOwner();
  }
  void addOwner() const;
  void removeOwner() const;

  const internal::InternedName* name_ = nullptr;
};

// Where the `end` of a block stands.
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
