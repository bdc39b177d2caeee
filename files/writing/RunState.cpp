#include "files/writing/RunState.h"

#include <fmt/core.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <utility>

#include "files/writing/Flush.h"

namespace soca {
namespace {

constexpr std::uint32_t stateRecord = 7;
constexpr std::uint64_t spaceWithoutNumbers = 4096;

std::string pathIn(const std::string& folder) { return folder + "/state"; }

void putNumbers(FieldWriter& fields, const FileNumbers& numbers) {
  fields.put<std::uint64_t>(numbers.size());
  for (const std::uint32_t number : numbers) fields.put(number);
}

FileNumbers readNumbers(FieldReader& fields) {
  const auto count = fields.number<std::uint64_t>();
  FileNumbers numbers;
  while (numbers.size() < count) numbers.push_back(fields.number<std::uint32_t>());
  return numbers;
}

std::string fieldsOf(const RunState& state) {
  FieldWriter fields;
  fields.put(journalVersion).put(static_cast<std::uint32_t>(state.stage));
  fields.put(std::uint32_t{state.wasDone}).put(state.token).put(state.beforeSize);
  putNumbers(fields, state.left);
  putNumbers(fields, state.restored);
  putNumbers(fields, state.undoing);
  return fields.bytes();
}

RunState parse(FieldReader fields) {
  if (fields.number<std::uint32_t>() != journalVersion) throw JournalError(otherVersionFault);
  RunState state;
  state.stage = RunState::StageType{fields.number<std::uint32_t>()};
  state.wasDone = fields.number<std::uint32_t>() != 0;
  state.token = fields.text();
  state.beforeSize = fields.number<std::uint64_t>();
  state.left = readNumbers(fields);
  state.restored = readNumbers(fields);
  state.undoing = readNumbers(fields);
  return state;
}

}  // namespace

void StateFile::reserve(std::size_t numbers) {
  next_ = std::make_unique<RecordWriter>(newPath());
  next_->reserve(spaceWithoutNumbers + sizeof(std::uint32_t) * std::uint64_t{numbers});
}

void StateFile::write(const RunState& state) {
  if (!next_) next_ = std::make_unique<RecordWriter>(newPath());
  const auto writer = std::move(next_);
  writer->append(stateRecord, fieldsOf(state));
  writer->flush();
  if (std::rename(newPath().c_str(), pathIn(folder_).c_str()) == 0 && flushPath(folder_)) return;
  throw JournalError(fmt::format("the journal '{}' could not be replaced: {}", pathIn(folder_),
                                 std::strerror(errno)));
}

RunState readState(const std::string& folder) {
  secureFolder(folder);
  const RecordFile file(pathIn(folder));
  if (!file.isWhole() || file.records().size() != 1) throw JournalError(damageIn("state"));
  return parse(FieldReader(file.records().front().fields));
}

}  // namespace soca
