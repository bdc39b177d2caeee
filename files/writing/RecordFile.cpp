#include "files/writing/RecordFile.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include "files/writing/Digest.h"

namespace soca {
namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 20U;
constexpr std::uint32_t recordMark = 0x61636f73;

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

}  // namespace

bool Record::hasIntactData() const { return checksumOf(data) == dataChecksum; }

RecordWriter::RecordWriter(std::string path, std::uint64_t size)
    : path_(std::move(path)),
      file_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
  const bool isReady = file_.isOpen() &&
                       ::ftruncate(file_.number(), static_cast<off_t>(size)) == 0 &&
                       ::lseek(file_.number(), 0, SEEK_END) >= 0;
  if (!isReady) fail();
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

RecordFile::RecordFile(const std::string& path) {
  const auto fail = [&] {
    throw JournalError(
        fmt::format("the journal '{}' could not be read: {}", path, std::strerror(errno)));
  };
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen() && errno == ENOENT) return;
  struct stat status = {};
  if (!file.isOpen() || ::fstat(file.number(), &status) != 0) fail();
  if (status.st_size == 0) return;
  const auto length = static_cast<std::size_t>(status.st_size);
  void* place = ::mmap(nullptr, length, PROT_READ, MAP_PRIVATE, file.number(), 0);
  if (place == MAP_FAILED) fail();
  bytes_ = {static_cast<const char*>(place), length};
  while (takeRecord()) {
  }
}

RecordFile::~RecordFile() {
  if (!bytes_.empty()) ::munmap(const_cast<char*>(bytes_.data()), bytes_.size());
}

bool RecordFile::takeRecord() {
  const std::string_view rest = bytes_.substr(size_);
  Head head;
  if (rest.size() < sizeof(head)) return false;
  std::memcpy(&head, rest.data(), sizeof(head));
  if (head.mark != recordMark || head.headChecksum != checksumOfHead(head)) return false;
  const std::uint64_t room = rest.size() - sizeof(head);
  if (head.fieldsSize > room || head.dataSize > room - head.fieldsSize) return false;
  const std::string_view fields = rest.substr(sizeof(head), head.fieldsSize);
  if (checksumOf(fields) != head.fieldsChecksum) return false;
  const std::string_view data = rest.substr(sizeof(head) + head.fieldsSize, head.dataSize);
  records_.push_back({head.type, fields, data, head.dataChecksum});
  size_ += sizeof(head) + head.fieldsSize + head.dataSize;
  return true;
}

std::string_view FieldReader::take(std::uint64_t size) {
  if (size > bytes_.size()) throw JournalError("a record of the journal is too short");
  const std::string_view field = bytes_.substr(0, size);
  bytes_.remove_prefix(size);
  return field;
}

}  // namespace soca
