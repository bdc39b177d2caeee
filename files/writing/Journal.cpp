#include "files/writing/Journal.h"

#include <fmt/core.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <iterator>
#include <numeric>
#include <random>

#include "files/writing/Flush.h"

namespace soca {
namespace {

// To be changed with the form of the records below.
constexpr std::uint32_t formatVersion = 1;

enum RecordType : std::uint32_t { run = 1, file, begun, done, undoing, undone };

std::string beforePath(const std::string& folder) { return folder + "/before"; }
std::string statePath(const std::string& folder) { return folder + "/state"; }

std::string makeToken() {
  std::random_device random;
  return fmt::format("{:08x}{:08x}", random(), random());
}

std::string fieldsOf(const SavedFile& file) {
  FieldWriter fields;
  fields.put(file.path).put(file.mode).put(file.modificationTime);
  for (const Digest& digest : {file.oldDigest, file.newDigest}) {
    fields.put(digest.size).put(digest.low).put(digest.high);
  }
  return fields.bytes();
}

Digest readDigest(FieldReader& fields) {
  Digest digest;
  digest.size = fields.number<std::uint64_t>();
  digest.low = fields.number<std::uint64_t>();
  digest.high = fields.number<std::uint64_t>();
  return digest;
}

SavedFile readFile(FieldReader fields) {
  SavedFile file;
  file.path = fields.text();
  file.mode = fields.number<std::uint32_t>();
  file.modificationTime = fields.number<std::int64_t>();
  file.oldDigest = readDigest(fields);
  file.newDigest = readDigest(fields);
  return file;
}

std::string fieldsOf(const FileNumbers& numbers) {
  FieldWriter fields;
  for (const std::uint32_t number : numbers) fields.put(number);
  return fields.bytes();
}

FileNumbers readNumbers(FieldReader fields) {
  FileNumbers numbers;
  while (!fields.isAtEnd()) numbers.push_back(fields.number<std::uint32_t>());
  return numbers;
}

std::string_view folderOf(std::string_view path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

// The deepest folder that contains both, or is one of them.
std::string commonFolderOf(std::string_view one, std::string_view other) {
  while (one != other) {
    std::string_view& longer = one.size() > other.size() ? one : other;
    longer = folderOf(longer);
  }
  return std::string(one);
}

}  // namespace

std::string temporaryPath(const std::string& path, std::string_view token, std::size_t number) {
  return fmt::format("{}.soca-{}-{}", path.substr(0, path.rfind('/') + 1), token, number);
}

JournalWriter::JournalWriter(std::string folder)
    : folder_(std::move(folder)),
      token_(makeToken()),
      before_(beforePath(folder_)),
      state_(statePath(folder_)) {
  FieldWriter fields;
  fields.put(formatVersion).put(std::int64_t{std::time(nullptr)}).put(token_);
  before_.append(RecordType::run, fields.bytes());
}

void JournalWriter::save(const SavedFile& file, std::string_view oldBytes) {
  before_.append(RecordType::file, fieldsOf(file), oldBytes);
  commonFolder_ = count_ == 0 ? std::string(folderOf(file.path))
                              : commonFolderOf(commonFolder_, folderOf(file.path));
  ++count_;
}

void JournalWriter::begin() {
  // Reserves space for the last record, so that on a full disk a finished run is not taken for an
  // interrupted one.
  state_.reserve(4096 + sizeof(std::uint32_t) * std::uint64_t{count_});
  FieldWriter fields;
  fields.put(count_).put(commonFolder_);
  before_.append(RecordType::begun, fields.bytes());
  before_.flush();
  const bool isOnDisk = flushPath(folder_) && flushPath(std::string(folderOf(folder_)));
  if (isOnDisk) return;
  throw JournalError(fmt::format("the folder '{}' of the journal could not be flushed: {}", folder_,
                                 std::strerror(errno)));
}

void JournalWriter::finish(const FileNumbers& left) {
  state_.append(RecordType::done, fieldsOf(left));
  state_.flush();
}

Journal::Journal(const std::string& folder)
    : statePath_(statePath(folder)), before_(beforePath(folder)) {
  readBefore();
  readState();
}

std::string_view Journal::oldBytes(std::size_t number) const {
  // The first record is that of the run.
  const Record& record = before_.records()[number + 1];
  if (record.hasIntactData()) return record.data;
  throw JournalError("the journal no longer has its old text, since the disk has changed it");
}

void Journal::beginUndo() {
  addState(RecordType::undoing, {});
  state_ = StateType::interrupted;
}

void Journal::endUndo(const FileNumbers& restored) {
  addState(RecordType::undone, fieldsOf(restored));
  dropPending(restored);
  state_ = pending_.empty() ? StateType::undone : StateType::partlyUndone;
}

void Journal::readBefore() {
  for (const Record& record : before_.records()) {
    FieldReader fields(record.fields);
    switch (record.type) {
      case RecordType::run:
        if (fields.number<std::uint32_t>() != formatVersion) {
          throw JournalError("its journal was written by another version of the program");
        }
        time_ = fields.number<std::int64_t>();
        token_ = fields.text();
        break;
      case RecordType::file:
        files_.push_back(readFile(fields));
        break;
      default:
        hasBegun_ = fields.number<std::uint32_t>() == files_.size();
        commonFolder_ = fields.text();
    }
  }
  pending_.resize(files_.size());
  std::iota(pending_.begin(), pending_.end(), 0U);
  changed_ = pending_;
}

void Journal::readState() {
  const RecordFile state(statePath_);
  stateSize_ = state.size();
  if (!hasBegun_) {
    // The file `before` was complete on the disk before anything was written here, and is deleted
    // first when the journal is removed.
    isRemainder_ = before_.isEmpty() && !state.records().empty();
    if (!before_.isEmpty() && !state.records().empty()) state_ = StateType::damaged;
    return;
  }
  state_ = StateType::interrupted;
  for (const Record& record : state.records()) {
    if (record.type == RecordType::undoing) {
      state_ = StateType::interrupted;
      continue;
    }
    dropPending(readNumbers(FieldReader(record.fields)));
    if (record.type == RecordType::done) {
      changed_ = pending_;
      wasDone_ = true;
      state_ = StateType::done;
    } else {
      state_ = pending_.empty() ? StateType::undone : StateType::partlyUndone;
    }
  }
}

void Journal::addState(std::uint32_t type, std::string_view fields) {
  RecordWriter writer(statePath_, stateSize_);
  writer.append(type, fields);
  writer.flush();
  stateSize_ = RecordFile(statePath_).size();
}

void Journal::dropPending(const FileNumbers& numbers) {
  FileNumbers rest;
  std::ranges::set_difference(pending_, numbers, std::back_inserter(rest));
  pending_ = std::move(rest);
}

bool isSettled(const std::string& folder) {
  struct stat before = {};
  // Without that file it is no run.
  if (::stat(beforePath(folder).c_str(), &before) != 0 || before.st_size == 0) return false;
  try {
    const RecordFile state(statePath(folder));
    return !state.records().empty() && state.records().back().type != RecordType::undoing;
  } catch (const JournalError&) {
    return false;
  }
}

std::unique_ptr<Journal> openJournal(const std::string& folder) {
  try {
    return std::make_unique<Journal>(folder);
  } catch (const JournalError&) {
    return nullptr;
  }
}

}  // namespace soca
