#include "platform/runtime/ReadClasses.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

#include "platform/analyzer/Analyzer.h"
#include "platform/runtime/ClassTable.h"

namespace sotarn {
namespace {

thread_local ReadClasses* inForce = nullptr;

// Throws ReadError.
bool hasSameText(const ReadClasses::FileRecord& file) {
  const std::string& path = file.place.source;
  if (path.empty()) return true;
  if (file.stamp) return fl::filesystem::stampOf(path) == file.stamp;
  const auto now = fl::filesystem::readSourceFile(path, ca::maximumFileSize);
  return ReadClasses::hashOf(now.text) == file.textHash;
}

// Whether the class path still has the class in the place of all these, with the same text.
bool isUnchanged(const std::string& name, const std::vector<ReadClasses::FileRecord>& files) {
  try {
    // A file may have come in front of one that is as it was.
    const auto place = findClassPlace(name);
    return std::ranges::all_of(
        files, [&](const auto& file) { return file.place == place && hasSameText(file); });
  } catch (const fl::filesystem::ReadError&) {
    return false;
  }
}

// Whether the class, which was missing, is so still.
bool isStillMissing(const std::string& name) {
  try {
    const auto description = describeClass(name);
    return description == nullptr || description->origin == ClassOriginType::environment ||
           description->origin == ClassOriginType::classTable;
  } catch (const fl::filesystem::ReadError&) {
    return false;
  }
}

}  // namespace

ReadClasses::Scope::Scope(ReadClasses* classes) : outer_(std::exchange(inForce, classes)) {}

ReadClasses::Scope::~Scope() { inForce = outer_; }

ReadClasses* ReadClasses::current() { return inForce; }

std::size_t ReadClasses::hashOf(fl::ustring_view text) {
  return std::hash<fl::ustring_view>()(text);
}

void ReadClasses::add(const ClassDescription& description, FileRecord file) {
  const std::lock_guard lock(mutex_);
  auto& [files, superClasses] = records_[description.name];
  if (std::ranges::find(files, file) != files.end()) return;
  files.push_back(std::move(file));
  // The others show that the class has changed.
  if (files.size() == 1) superClasses = description.superClasses;
}

std::unordered_set<std::string> ReadClasses::findChanged(
    const std::vector<std::string>& names) const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> reached = names;
  std::unordered_set<std::string> met(names.begin(), names.end());
  std::unordered_map<std::string_view, std::vector<std::size_t>> derived;
  std::vector<std::string> changed;
  for (std::size_t i = 0; i < reached.size(); ++i) {
    const std::string name = reached[i];
    if (hasChanged(name)) changed.push_back(name);
    for (const std::string& superClass : superClassesOf(name)) {
      derived[superClass].push_back(i);
      if (met.insert(superClass).second) reached.push_back(superClass);
    }
  }
  std::unordered_set<std::string> result(changed.begin(), changed.end());
  for (std::size_t i = 0; i < changed.size(); ++i) {
    for (const std::size_t heir : derived[changed[i]]) {
      if (result.insert(reached[heir]).second) changed.push_back(reached[heir]);
    }
  }
  return result;
}

bool ReadClasses::hasChanged(const std::string& name) const {
  const auto known = records_.find(name);
  if (known == records_.end()) return !isStillMissing(name);
  return !isUnchanged(name, known->second.files);
}

const std::vector<std::string>& ReadClasses::superClassesOf(const std::string& name) const {
  static const std::vector<std::string> none;
  if (const ClassTable* table = currentClassTable()) {
    const auto entry = table->find(name);
    if (entry != table->end() && entry->second.superClasses) return *entry->second.superClasses;
  }
  const auto known = records_.find(name);
  return known == records_.end() ? none : known->second.superClasses;
}

}  // namespace sotarn
