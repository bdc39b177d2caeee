// Files of records with checksums.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "files/writing/Descriptor.h"
#include "files/writing/StateFolder.h"

namespace soca {

// The faults of a journal that can be neither undone nor repaired.
inline constexpr const char* otherVersionFault =
    "its journal was written by another version of the program";
std::string damageIn(std::string_view file);

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
  // Creates the file, readable by its owner only. What is at the path is removed.
  explicit RecordWriter(std::string path);

  void append(std::uint32_t type, std::string_view fields, std::string_view data = {});
  void flush();
  // Reserves space for as many more bytes, so that they can be written even if the disk becomes
  // full. Does nothing if the file system does not support this.
  void reserve(std::uint64_t size);
  // The number of bytes of all records so far.
  std::uint64_t size() const { return size_; }

 private:
  void writeOut();
  [[noreturn]] void fail() const;

  std::string path_;
  Descriptor file_;
  std::string buffer_;
  std::uint64_t size_ = 0;
};

// The intact records of a file: those before the first damage, or to be salvaged, those after it
// too. The latter may be a part of the data of another one, so they are good for messages only.
enum class ReadType { untilDamage, salvage };

class RecordFile {
 public:
  // Throws JournalError if the file cannot be read, is no regular file, or is not the user's.
  explicit RecordFile(const std::string& path, ReadType type = ReadType::untilDamage);
  ~RecordFile();
  RecordFile(const RecordFile&) = delete;
  RecordFile& operator=(const RecordFile&) = delete;

  // They point into the mapped file, and are valid as long as this object.
  const std::vector<Record>& records() const { return records_; }
  // Whether the file consists of nothing but these. Their data may still be damaged.
  bool isWhole() const { return isWhole_; }
  // The number of bytes of the file.
  std::uint64_t size() const { return bytes_.size(); }
  // Whether the data of all records are intact.
  bool hasIntactData() const;
  // Gives the memory of the file before the part back to the system, which reads it again when it
  // is needed: otherwise a journal that is read to its end would be all in memory. For one thread.
  void releaseBefore(std::string_view part) const;

 private:
  void findRecords(ReadType type);

  std::string_view bytes_;
  std::vector<Record> records_;
  bool isWhole_ = true;
  // The number of bytes before the last part that was released, in whole steps.
  mutable std::size_t released_ = 0;
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
