// Small values that syntax nodes hold: the written form of a token, an interned name, and where a
// block ends.
#pragma once

#include <atomic>
#include <cstdint>

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
// a table belongs to the table.
struct InternedName {
  static constexpr std::uint32_t ownedByTable = 0xFFFFFFFF;

  fl::ustring text;
  std::uint32_t hash = 0;
  mutable std::atomic<std::uint32_t> owners = ownedByTable;
};

// The hash of the empty name. It differs from process to process, so that nobody can make up a text
// whose names all have one hash.
extern const std::uint32_t nameHashSeed;

// Continues the hash `hash` of a name by one code unit.
constexpr std::uint32_t extendNameHash(std::uint32_t hash, char16_t unit) {
  return (hash ^ unit) * 0x9E3779B1U;
}

std::uint32_t hashName(fl::ustring_view name);

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
    return left.hash() == right.hash() && left.getString() == right.getString();
  }

 private:
  std::uint32_t hash() const { return name_ != nullptr ? name_->hash : internal::nameHashSeed; }
  void share() const;
  void release() const;

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
