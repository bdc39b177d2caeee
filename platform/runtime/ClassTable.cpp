#include "platform/runtime/ClassTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "platform/text/Conversions.h"

namespace sotarn {

namespace {

using Json = nlohmann::json;

// The place of a value in the table, as shown in messages.
using Place = std::string;

[[noreturn]] void fail(const Place& place, const std::string& what) {
  throw ClassTableError(place.empty() ? what : fmt::format("{}: {}", place, what));
}

bool readBool(const Json& value, const Place& place) {
  if (!value.is_boolean()) fail(place, "expected true or false");
  return value.get<bool>();
}

std::string readString(const Json& value, const Place& place) {
  if (!value.is_string()) fail(place, "expected a string");
  return value.get<std::string>();
}

std::uint32_t readCode(const Json& value, const Place& place) {
  constexpr std::uint64_t largest = 0xFFFFFFFF;
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() > largest) {
    fail(place, "expected a whole number from 0 to 4294967295");
  }
  return value.get<std::uint32_t>();
}

std::vector<std::string> readStrings(const Json& value, const Place& place) {
  if (!value.is_array()) fail(place, "expected a list of strings");
  std::vector<std::string> strings;
  strings.reserve(value.size());
  for (std::size_t index = 0; index < value.size(); ++index) {
    strings.push_back(readString(value[index], fmt::format("{}[{}]", place, index)));
  }
  return strings;
}

// Calls the reader of each key of the object; a key without a reader is an error.
struct Key {
  std::string_view name;
  std::function<void(const Json& value, const Place& place)> read;
};

void readObject(const Json& object, const Place& place, const std::vector<Key>& keys) {
  if (!object.is_object()) fail(place, "expected an object");
  for (const auto& [name, value] : object.items()) {
    const auto key = std::find_if(keys.begin(), keys.end(),
                                  [&](const Key& candidate) { return candidate.name == name; });
    if (key == keys.end()) fail(place, fmt::format("unknown key \"{}\"", name));
    key->read(value, place.empty() ? name : place + "." + name);
  }
}

// Reads an object whose keys are names of classes or properties.
void readNamed(const Json& object, const Place& place,
               const std::function<void(const std::string&, const Json&, const Place&)>& read) {
  if (!object.is_object()) fail(place, "expected an object");
  for (const auto& [name, value] : object.items()) {
    read(name, value, fmt::format("{}[\"{}\"]", place, name));
  }
}

ConstrainedSetInfo readConstrainedSet(const Json& object, const Place& place,
                                      const std::string& property) {
  ConstrainedSetInfo info{.kind = 1,
                          .valueType = 1,
                          .setPropertyName = fl::i18n::to_ustring(property + "Set"),
                          .values = {}};
  readObject(
      object, place,
      {{"kind", [&](const Json& v, const Place& p) { info.kind = readCode(v, p); }},
       {"valueType", [&](const Json& v, const Place& p) { info.valueType = readCode(v, p); }},
       {"setProperty",
        [&](const Json& v, const Place& p) {
          info.setPropertyName = fl::i18n::to_ustring(readString(v, p));
        }},
       {"values", [&](const Json& v, const Place& p) {
          for (const std::string& text : readStrings(v, p)) {
            info.values.push_back(fl::i18n::to_ustring(text));
          }
        }}});
  return info;
}

PropertyDescription readProperty(const Json& object, const Place& place, const std::string& name) {
  PropertyDescription property;
  readObject(
      object, place,
      {{"abstract", [&](const Json& v, const Place& p) { property.isAbstract = readBool(v, p); }},
       {"dependent", [&](const Json& v, const Place& p) { property.isDependent = readBool(v, p); }},
       {"constrainedSet", [&](const Json& v, const Place& p) {
          property.constrainedSet =
              std::make_shared<const ConstrainedSetInfo>(readConstrainedSet(v, p, name));
        }}});
  return property;
}

// Empty for a list that is not filled in yet.
std::optional<std::vector<std::string>> readSuperClasses(const Json& value, const Place& place) {
  auto names = readStrings(value, place);
  if (std::ranges::find(names, superClassToFillIn) != names.end()) return std::nullopt;
  return names;
}

bool isToFillIn(const Json& entry, const ClassTableEntry& facts) {
  return entry.size() == 1 && entry.contains("superclasses") && !facts.superClasses;
}

ClassTableEntry readEntry(const Json& object, const Place& place) {
  ClassTableEntry entry;
  readObject(
      object, place,
      {{"superclasses",
        [&](const Json& v, const Place& p) { entry.superClasses = readSuperClasses(v, p); }},
       {"strictDefaults",
        [&](const Json& v, const Place& p) { entry.strictDefaults = readBool(v, p); }},
       {"methods", [&](const Json& v, const Place& p) { entry.methods = readStrings(v, p); }},
       {"properties", [&](const Json& v, const Place& p) {
          readNamed(v, p, [&](const std::string& name, const Json& property, const Place& at) {
            entry.properties.emplace(name, readProperty(property, at, name));
          });
        }}});
  return entry;
}

// "line 2, column 5", both one-based, for a byte number counted from one. Columns count bytes.
std::string placeOf(std::size_t byte, std::string_view text) {
  const std::string_view before = text.substr(0, byte == 0 ? 0 : byte - 1);
  const auto lineFeeds = std::ranges::count(before, '\n');
  const std::size_t lineStart = before.rfind('\n') + 1;
  return fmt::format("line {}, column {}", lineFeeds + 1, before.size() - lineStart + 1);
}

// Read for each description of a class without a lock, so a table is never destroyed once it is
// set.
std::atomic<const ClassTable*> currentTable = nullptr;

}  // namespace

ClassTable parseClassTable(std::string_view json) {
  Json document;
  try {
    document = Json::parse(json);
  } catch (const Json::parse_error& error) {
    fail("", fmt::format("no valid JSON at {}", placeOf(error.byte, json)));
  } catch (const Json::exception&) {
    fail("", "a number is too large");
  }
  ClassTable table;
  readObject(document, "",
             {{"classes", [&](const Json& classes, const Place& place) {
                 readNamed(classes, place,
                           [&](const std::string& name, const Json& entry, const Place& at) {
                             auto facts = readEntry(entry, at);
                             if (isToFillIn(entry, facts)) return;
                             table.emplace(name, std::move(facts));
                           });
               }}});
  return table;
}

void setClassTable(std::shared_ptr<const ClassTable> table) {
  static std::mutex mutex;
  static auto& history = *new std::vector<std::shared_ptr<const ClassTable>>();
  const std::lock_guard lock(mutex);
  currentTable = table.get();
  if (table != nullptr) history.push_back(std::move(table));
}

const ClassTable* currentClassTable() { return currentTable; }

}  // namespace sotarn
