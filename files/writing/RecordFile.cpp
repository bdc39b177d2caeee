#include "files/writing/RecordFile.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <optional>

#include "files/writing/Digest.h"

namespace soca {
namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 20U;
constexpr std::uint32_t recordMark = 0x61636f73;
// After damage only records with fields up to this size are looked for, so that data that look like
// many records do not take long.
constexpr std::uint64_t salvagedFieldsSize = std::uint64_t{1} << 16U;

// The head before the fields and data of each record.
struct Head {
  std::uint32_t mark = recordMark;
  std::uint32_t type = 0;
  std::uint64_t fieldsSize = 0;
  std::uint64_t dataSize = 0;
  std::uint64_t dataChecksum = 0;
  // The checksum of the fields.
  std::uint64_t fieldsChecksum = 0;
  // The checksum of all members above.
  std::uint64_t headChecksum = 0;
};

std::uint64_t checksumOfHead(const Head& head) {
  return checksumOf({reinterpret_cast<const char*>(&head), offsetof(Head, headChecksum)});
}

const std::string_view markBytes(reinterpret_cast<const char*>(&recordMark), sizeof(recordMark));

// Adds the record at the start of the bytes, and returns its size; empty if there is none.
std::optional<std::uint64_t> takeRecord(std::string_view bytes, std::uint64_t maximumFieldsSize,
                                        std::vector<Record>& records) {
  Head head;
  if (bytes.size() < sizeof(head)) return std::nullopt;
  std::memcpy(&head, bytes.data(), sizeof(head));
  if (head.mark != recordMark || head.headChecksum != checksumOfHead(head)) return std::nullopt;
  const std::uint64_t room = bytes.size() - sizeof(head);
  if (head.fieldsSize > maximumFieldsSize) return std::nullopt;
  if (head.fieldsSize > room || head.dataSize > room - head.fieldsSize) return std::nullopt;
  const std::string_view fields = bytes.substr(sizeof(head), head.fieldsSize);
  if (checksumOf(fields) != head.fieldsChecksum) return std::nullopt;
  const std::string_view data = bytes.substr(sizeof(head) + head.fieldsSize, head.dataSize);
  records.push_back({head.type, fields, data, head.dataChecksum});
  return sizeof(head) + head.fieldsSize + head.dataSize;
}

}  // namespace

std::string damageIn(std::string_view file) {
  return fmt::format("the file '{}' of its journal is damaged", file);
}

bool Record::hasIntactData() const { return checksumOf(data) == dataChecksum; }

RecordWriter::RecordWriter(std::string path) : path_(std::move(path)) {
  ::unlink(path_.c_str());
  file_ =
      Descriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file_.isOpen()) fail();
}

void RecordWriter::append(std::uint32_t type, std::string_view fields, std::string_view data) {
  Head head;
  head.type = type;
  head.fieldsSize = fields.size();
  head.dataSize = data.size();
  head.dataChecksum = checksumOf(data);
  head.fieldsChecksum = checksumOf(fields);
  head.headChecksum = checksumOfHead(head);
  buffer_.append(reinterpret_cast<const char*>(&head), sizeof(head));
  buffer_.append(fields).append(data);
  size_ += sizeof(head) + fields.size() + data.size();
  if (buffer_.size() > bufferSize) writeOut();
}

void RecordWriter::flush() {
  writeOut();
  if (::fsync(file_.number()) != 0) fail();
}

void RecordWriter::reserve(std::uint64_t size) {
  const off_t end = ::lseek(file_.number(), 0, SEEK_END);
  // Only a failure for lack of space is reported.
  if (::fallocate(file_.number(), FALLOC_FL_KEEP_SIZE, end, static_cast<off_t>(size)) != 0 &&
      (errno == ENOSPC || errno == EDQUOT)) {
    fail();
  }
}

void RecordWriter::writeOut() {
  if (!file_.write(buffer_)) fail();
  buffer_.clear();
}

void RecordWriter::fail() const {
  throw JournalError(
      fmt::format("the journal '{}' could not be written: {}", path_, std::strerror(errno)));
}

RecordFile::RecordFile(const std::string& path, ReadType type) {
  const Descriptor file = openOwnFile(path, O_RDONLY);
  struct stat status = {};
  const bool hasStatus = ::fstat(file.number(), &status) == 0;
  const auto length = static_cast<std::size_t>(status.st_size);
  if (hasStatus && length == 0) return;
  void* place =
      hasStatus ? ::mmap(nullptr, length, PROT_READ, MAP_PRIVATE, file.number(), 0) : MAP_FAILED;
  if (place == MAP_FAILED) {
    throw JournalError(
        fmt::format("the journal '{}' could not be read: {}", path, std::strerror(errno)));
  }
  bytes_ = {static_cast<const char*>(place), length};
  findRecords(type);
}

RecordFile::~RecordFile() {
  if (!bytes_.empty()) ::munmap(const_cast<char*>(bytes_.data()), bytes_.size());
}

void RecordFile::findRecords(ReadType type) {
  for (std::string_view rest = bytes_; !rest.empty();) {
    releaseBefore(rest);
    const std::uint64_t maximum = isWhole_ ? rest.size() : salvagedFieldsSize;
    if (const auto size = takeRecord(rest, maximum, records_)) {
      rest.remove_prefix(*size);
      continue;
    }
    isWhole_ = false;
    if (type == ReadType::untilDamage) return;
    // After the damage there may be intact records again.
    const std::size_t next = rest.find(markBytes, 1);
    rest.remove_prefix(std::min(next, rest.size()));
  }
}

bool RecordFile::hasIntactData() const {
  return std::ranges::all_of(records_, [this](const Record& record) {
    releaseBefore(record.data);
    return record.hasIntactData();
  });
}

void RecordFile::releaseBefore(std::string_view part) const {
  // A multiple of the size of a page.
  constexpr std::size_t step = std::size_t{4} << 20U;
  const std::size_t end = static_cast<std::size_t>(part.data() - bytes_.data()) / step * step;
  if (end > released_) {
    ::madvise(const_cast<char*>(bytes_.data()) + released_, end - released_, MADV_DONTNEED);
  }
  released_ = end;
}

std::string_view FieldReader::take(std::uint64_t size) {
  if (size > bytes_.size()) throw JournalError("a record of the journal is too short");
  const std::string_view field = bytes_.substr(0, size);
  bytes_.remove_prefix(size);
  return field;
}

}  // namespace soca
