// Files of records that are only appended to, and whose end may be torn by a crash.
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

// A journal that cannot be written or read. `what` has the file and the reason.
class JournalError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A record has fields, which are checked when the file is opened, and data, which may be large.
struct Record {
  std::uint32_t type = 0;
  std::string_view fields;
  std::string_view data;
  std::uint64_t dataChecksum = 0;

  // Whether the data are those that were written; the fields always are.
  bool hasIntactData() const;
};

// Appends records. They are written to the file in large blocks, and to the disk by `flush`. All
// members throw JournalError.
class RecordWriter {
 public:
  // Creates the file, readable by its owner only, or continues after its first `size` bytes. The
  // bytes after these were left by a crash, and are removed.
  explicit RecordWriter(std::string path, std::uint64_t size = 0);

  void append(std::uint32_t type, std::string_view fields, std::string_view data = {});
  void flush();
  // Reserves space for as many more bytes, so that they can be written even if the disk becomes
  // full. Does nothing if the file system does not support this.
  void reserve(std::uint64_t size);

 private:
  void writeOut();
  [[noreturn]] void fail() const;

  std::string path_;
  Descriptor file_;
  std::string buffer_;
};

// The intact records from the start of a file.
class RecordFile {
 public:
  // A file that does not exist has no records. Throws JournalError if it cannot be read.
  explicit RecordFile(const std::string& path);
  ~RecordFile();
  RecordFile(const RecordFile&) = delete;
  RecordFile& operator=(const RecordFile&) = delete;

  // They point into the mapped file, and are valid as long as this object.
  const std::vector<Record>& records() const { return records_; }
  // The number of bytes of the records.
  std::uint64_t size() const { return size_; }
  // Whether the file has no bytes at all.
  bool isEmpty() const { return bytes_.empty(); }

 private:
  bool takeRecord();

  std::string_view bytes_;
  std::vector<Record> records_;
  std::uint64_t size_ = 0;
};

// Joins the fields of a record into bytes.
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

// Reads the fields of a record in the order in which they were added. Throws JournalError if there
// are no more.
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
