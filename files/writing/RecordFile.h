// Files of records that are only ever appended, and whose end may be torn by a crash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "files/writing/Descriptor.h"

namespace soca {

// What keeps a journal from being written or read. `what` names the file and the reason.
class JournalError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A record has fields, which are looked at when the file is opened, and data, which may be large.
struct Record {
  std::uint32_t type = 0;
  std::string_view fields;
  std::string_view data;
  std::uint64_t dataChecksum = 0;

  // Whether the data are those that were written; for the fields that always holds.
  bool hasIntactData() const;
};

// Appends records. They reach the file in large pieces, and the disk with `flush`. All members
// throw JournalError.
class RecordWriter {
 public:
  // Makes the file, for its owner alone, or goes on behind the first `size` bytes of it. What
  // stands there is what a crash left, and is cut off.
  explicit RecordWriter(std::string path, std::uint64_t size = 0);

  void append(std::uint32_t type, std::string_view fields, std::string_view data = {});
  void flush();
  // So that as many bytes more can be written even if the disk is full by then. Does nothing where
  // the file system knows no such promise.
  void reserve(std::uint64_t size);

 private:
  void writeOut();
  [[noreturn]] void fail() const;

  std::string path_;
  Descriptor file_;
  std::string buffer_;
};

// The records of a file up to its end, or to the first one that is not whole.
class RecordFile {
 public:
  // A file that is not there has no records. Throws JournalError if it can't be read.
  explicit RecordFile(const std::string& path);
  ~RecordFile();
  RecordFile(const RecordFile&) = delete;
  RecordFile& operator=(const RecordFile&) = delete;

  // They lie in the file, and are gone with this object.
  const std::vector<Record>& records() const { return records_; }
  // How many bytes they take.
  std::uint64_t size() const { return size_; }
  // Whether there are no bytes at all, of records or of anything else.
  bool isEmpty() const { return bytes_.empty(); }

 private:
  bool takeRecord();

  std::string_view bytes_;
  std::vector<Record> records_;
  std::uint64_t size_ = 0;
};

// Puts the fields of a record one behind the other.
class FieldWriter {
 public:
  template <class Number>
    requires std::is_arithmetic_v<Number>
  FieldWriter& put(Number number) {
    bytes_.append(reinterpret_cast<const char*>(&number), sizeof(number));
    return *this;
  }
  FieldWriter& put(std::string_view text) {
    put<std::uint64_t>(text.size());
    bytes_ += text;
    return *this;
  }

  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

// Takes the fields of a record in the order in which they were put. Throws JournalError where there
// are none left.
class FieldReader {
 public:
  explicit FieldReader(std::string_view bytes) : bytes_(bytes) {}

  template <class Number>
    requires std::is_arithmetic_v<Number>
  Number number() {
    Number value;
    std::memcpy(&value, take(sizeof(value)).data(), sizeof(value));
    return value;
  }
  std::string text() { return std::string(take(number<std::uint64_t>())); }
  bool isAtEnd() const { return bytes_.empty(); }

 private:
  std::string_view take(std::uint64_t size);

  std::string_view bytes_;
};

}  // namespace soca
