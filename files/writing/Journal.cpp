#include "files/writing/Journal.h"

#include <fmt/core.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <iterator>
#include <numeric>
#include <random>

#include "files/writing/Flush.h"

namespace soca {
namespace {

enum RecordType : std::uint32_t { run = 1, file, begun };

constexpr std::size_t tokenSize = 16;

std::string beforePath(const std::string& folder) { return folder + "/before"; }

RecordFile openBefore(const std::string& folder, ReadType type) {
  secureFolder(folder);
  return RecordFile(beforePath(folder), type);
}

JournalError damage() { return JournalError(damageIn("before")); }

// The names of temporary files come from it, so that it must not lead elsewhere.
bool isToken(std::string_view text) {
  return text.size() == tokenSize &&
         text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// Absolute, and without a step up.
bool isSavedPath(std::string_view path) {
  return path.starts_with('/') && path.find('\0') == std::string_view::npos &&
         (std::string(path) + '/').find("/../") == std::string::npos;
}

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

struct RunFields {
  std::int64_t time = 0;
  std::string token;
};

// From the first record. Throws JournalError.
RunFields readRun(const std::vector<Record>& records) {
  if (records.empty() || records.front().type != RecordType::run) throw damage();
  FieldReader fields(records.front().fields);
  if (fields.number<std::uint32_t>() != journalVersion) throw JournalError(otherVersionFault);
  RunFields run;
  run.time = fields.number<std::int64_t>();
  run.token = fields.text();
  if (!isToken(run.token)) throw damage();
  return run;
}

bool isRegularFile(const std::string& path) {
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

SavedFile readFile(FieldReader fields) {
  SavedFile file;
  file.path = fields.text();
  file.mode = fields.number<std::uint32_t>();
  file.modificationTime = fields.number<std::int64_t>();
  file.oldDigest = readDigest(fields);
  file.newDigest = readDigest(fields);
  if (!isSavedPath(file.path)) throw damage();
  return file;
}

// Whether they are ascending numbers of so many files.
bool areNumbersOf(const FileNumbers& numbers, std::size_t count) {
  return std::ranges::adjacent_find(numbers, std::greater_equal()) == numbers.end() &&
         (numbers.empty() || numbers.back() < count);
}

FileNumbers without(const FileNumbers& numbers, const FileNumbers& others) {
  FileNumbers rest;
  std::ranges::set_difference(numbers, others, std::back_inserter(rest));
  return rest;
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

std::string newFolderOf(const std::string& folder) { return folder + ".new"; }
std::string oldFolderOf(const std::string& folder) { return folder + ".old"; }

JournalWriter::JournalWriter(std::string folder)
    : folder_(std::move(folder)),
      token_(makeToken()),
      before_(beforePath(newFolderOf(folder_))),
      stateFile_(newFolderOf(folder_)) {
  FieldWriter fields;
  fields.put(journalVersion).put(std::int64_t{std::time(nullptr)}).put(token_);
  before_.append(RecordType::run, fields.bytes());
}

void JournalWriter::save(const SavedFile& file, std::string_view oldBytes) {
  before_.append(RecordType::file, fieldsOf(file), oldBytes);
  commonFolder_ = count_ == 0 ? std::string(folderOf(file.path))
                              : commonFolderOf(commonFolder_, folderOf(file.path));
  ++count_;
}

void JournalWriter::begin() {
  FieldWriter fields;
  fields.put(count_).put(commonFolder_);
  before_.append(RecordType::begun, fields.bytes());
  before_.flush();
  state_.token = token_;
  state_.beforeSize = before_.size();
  stateFile_.write(state_);
  // Reserves space for the last state, so that on a full disk a finished run is not taken for an
  // interrupted one.
  stateFile_.reserve(count_);
  const bool isRenamed = std::rename(newFolderOf(folder_).c_str(), folder_.c_str()) == 0;
  if (!isRenamed || !flushPath(std::string(folderOf(folder_)))) {
    throw JournalError(fmt::format("the folder '{}' of the journal could not be made: {}", folder_,
                                   std::strerror(errno)));
  }
  stateFile_.moveTo(folder_);
}

void JournalWriter::finish(const FileNumbers& left) {
  state_.stage = RunState::StageType::settled;
  state_.wasDone = true;
  state_.left = left;
  stateFile_.write(state_);
}

Journal::Journal(const std::string& folder)
    : before_(openBefore(folder, ReadType::untilDamage)), stateFile_(folder) {
  readBefore();
  state_ = readState(folder);
  checkState();
  findPending();
}

Journal::StateType Journal::state() const {
  if (state_.stage != RunState::StageType::settled) return StateType::interrupted;
  if (pending_.empty()) return StateType::undone;
  return state_.wasDone && state_.restored.empty() ? StateType::done : StateType::partlyUndone;
}

std::string_view Journal::oldBytes(std::size_t number) const {
  // The first record is that of the run.
  const Record& record = before_.records()[number + 1];
  before_.releaseBefore(record.data);
  if (record.hasIntactData()) return record.data;
  throw JournalError("the journal no longer has its old text, since the disk has changed it");
}

bool Journal::hasIntactBytes() const { return before_.hasIntactData(); }

FileNumbers Journal::unfinished() const {
  return state_.stage == RunState::StageType::undoing ? state_.undoing : pending_;
}

void Journal::beginUndo(const FileNumbers& numbers) {
  state_.stage = RunState::StageType::undoing;
  state_.undoing = numbers;
  stateFile_.write(state_);
  stateFile_.reserve(files_.size());
}

void Journal::endUndo(const FileNumbers& restored) {
  state_.stage = RunState::StageType::settled;
  state_.undoing.clear();
  FileNumbers all;
  std::ranges::set_union(state_.restored, restored, std::back_inserter(all));
  state_.restored = std::move(all);
  stateFile_.write(state_);
  findPending();
}

// The records are: one of the run, one for each file, and the last one.
void Journal::readBefore() {
  const auto& records = before_.records();
  const RunFields run = readRun(records);
  time_ = run.time;
  token_ = run.token;
  const std::size_t count = records.size() - 2;
  if (!before_.isWhole() || records.size() < 2) throw damage();
  files_.reserve(count);
  for (std::size_t i = 1; i <= count; ++i) {
    if (records[i].type != RecordType::file) throw damage();
    before_.releaseBefore(records[i].fields);
    files_.push_back(readFile(FieldReader(records[i].fields)));
  }
  FieldReader last(records.back().fields);
  if (records.back().type != RecordType::begun || last.number<std::uint32_t>() != count)
    throw damage();
  commonFolder_ = last.text();
}

void Journal::checkState() const {
  const bool fits = state_.token == token_ && state_.beforeSize == before_.size() &&
                    areNumbersOf(state_.left, files_.size()) &&
                    areNumbersOf(state_.restored, files_.size()) &&
                    areNumbersOf(state_.undoing, files_.size());
  if (!fits) throw JournalError(damageIn("state"));
}

void Journal::findPending() {
  FileNumbers all(files_.size());
  std::iota(all.begin(), all.end(), 0U);
  changed_ = without(all, state_.left);
  pending_ = without(changed_, state_.restored);
}

bool isSettled(const std::string& folder) {
  try {
    return readState(folder).stage == RunState::StageType::settled;
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

std::optional<std::string> findFault(const std::string& folder) {
  try {
    if (Journal(folder).hasIntactBytes()) return std::nullopt;
    return "an old text in its journal is damaged";
  } catch (const JournalError& error) {
    return error.what();
  }
}

std::vector<std::string> readablePaths(const std::string& folder) {
  std::vector<std::string> paths;
  try {
    const RecordFile before = openBefore(folder, ReadType::salvage);
    for (const Record& record : before.records()) {
      if (record.type == RecordType::file) paths.push_back(FieldReader(record.fields).text());
    }
  } catch (const JournalError&) {
    // The rest cannot be read.
    return paths;
  }
  return paths;
}

std::vector<std::string> leftTemporaries(const std::string& folder) {
  std::vector<std::string> paths;
  if (isSettled(folder)) return paths;
  try {
    // Not to be salvaged: these paths are used.
    const RecordFile before = openBefore(folder, ReadType::untilDamage);
    const auto& records = before.records();
    const std::string token = readRun(records).token;
    for (std::size_t i = 1; i < records.size() && records[i].type == RecordType::file; ++i) {
      const SavedFile file = readFile(FieldReader(records[i].fields));
      std::string path = temporaryPath(file.path, token, i - 1);
      if (isRegularFile(path)) paths.push_back(std::move(path));
    }
  } catch (const JournalError&) {
    // The rest cannot be read.
    return paths;
  }
  return paths;
}

}  // namespace soca
