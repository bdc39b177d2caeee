#include "conversions/selection/SelectionFile.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace soca {
namespace {

using Json = nlohmann::json;

enum class ValueType { object, list, text, number, other };

// What an object or a list of the file is.
enum class LevelType { top, file, classes, aClass, conversions, leftOut, conversion, needs };

// A key of an object, or the items of a list, which have no key.
struct KeyRow {
  LevelType level;
  std::string_view key;
  ValueType type;
  // What an object or a list under the key is.
  LevelType opens = LevelType::top;
};

constexpr auto keyRows = std::to_array<KeyRow>({
    {LevelType::top, "", ValueType::object, LevelType::file},
    {LevelType::file, "version", ValueType::number},
    {LevelType::file, "classes", ValueType::list, LevelType::classes},
    {LevelType::classes, "", ValueType::object, LevelType::aClass},
    {LevelType::aClass, "class", ValueType::text},
    {LevelType::aClass, "file", ValueType::text},
    {LevelType::aClass, "sha256", ValueType::text},
    {LevelType::aClass, "conversions", ValueType::list, LevelType::conversions},
    {LevelType::aClass, "leftOut", ValueType::list, LevelType::leftOut},
    {LevelType::conversions, "", ValueType::object, LevelType::conversion},
    {LevelType::leftOut, "", ValueType::object, LevelType::conversion},
    {LevelType::conversion, "id", ValueType::text},
    {LevelType::conversion, "risk", ValueType::text},
    {LevelType::conversion, "line", ValueType::number},
    {LevelType::conversion, "reason", ValueType::text},
    {LevelType::conversion, "message", ValueType::text},
    {LevelType::conversion, "needs", ValueType::list, LevelType::needs},
    {LevelType::needs, "", ValueType::text},
});

constexpr std::string_view nameOf(ValueType type) {
  switch (type) {
    case ValueType::object:
      return "an object";
    case ValueType::list:
      return "a list";
    case ValueType::text:
      return "a string";
    case ValueType::number:
      return "a whole number";
    case ValueType::other:
      break;
  }
  return "another value";
}

const KeyRow* findKey(LevelType level, std::string_view key) {
  const auto* row = std::ranges::find_if(
      keyRows, [&](const KeyRow& each) { return each.level == level && each.key == key; });
  return row == keyRows.end() ? nullptr : row;
}

// Iterates over the text for the parser, and shows how far it has read.
class ReadingPosition {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  ReadingPosition(const char* at, std::size_t* count) : at_(at), count_(count) {}

  reference operator*() const { return *at_; }
  ReadingPosition& operator++() {
    ++at_;
    ++*count_;
    return *this;
  }
  bool operator==(const ReadingPosition& other) const { return at_ == other.at_; }

 private:
  const char* at_;
  std::size_t* count_;
};

// Takes the values as they are read, so that no tree of them is made: that of a large file would
// take ten times its size.
class SelectionReader : public nlohmann::json_sax<Json> {
 public:
  explicit SelectionReader(std::string_view text) : text_(text) {}

  ChosenIds read() {
    const ReadingPosition begin(text_.data(), &read_);
    const ReadingPosition end(text_.data() + text_.size(), &read_);
    Json::sax_parse(begin, end, this);
    ids_.finish();
    return std::move(ids_);
  }

  // --- the events of the parser ---

  bool null() override { return takeValue(ValueType::other); }
  bool boolean(bool) override { return takeValue(ValueType::other); }
  bool number_integer(std::int64_t) override { return takeValue(ValueType::other); }
  bool number_float(double, const std::string&) override { return takeValue(ValueType::other); }
  bool binary(Json::binary_t&) override { return takeValue(ValueType::other); }
  bool number_unsigned(std::uint64_t value) override {
    takeValue(ValueType::number);
    if (key_ == "version" && level() == LevelType::file) takeVersion(value);
    return true;
  }
  bool string(std::string& value) override {
    takeValue(ValueType::text);
    if (level() == LevelType::aClass) takeClassKey(value);
    if (level() == LevelType::conversion) takeConversionKey(value);
    return true;
  }
  bool start_object(std::size_t) override {
    open(ValueType::object);
    if (level() == LevelType::aClass) class_ = {};
    if (level() == LevelType::conversion) conversion_ = {};
    return true;
  }
  bool start_array(std::size_t) override {
    open(ValueType::list);
    return true;
  }
  bool key(std::string& value) override {
    const KeyRow* row = findKey(level(), value);
    if (row == nullptr) failAtKey(value);
    const std::uint32_t bit = std::uint32_t{1} << static_cast<unsigned>(row - keyRows.begin());
    if ((levels_.back().keys & bit) != 0) fail(fmt::format("\"{}\" is there twice", value));
    levels_.back().keys |= bit;
    key_ = std::move(value);
    return true;
  }
  bool end_object() override {
    if (level() == LevelType::file) finishFile();
    if (level() == LevelType::aClass) finishClass();
    if (level() == LevelType::conversion) finishConversion();
    levels_.pop_back();
    return true;
  }
  bool end_array() override {
    levels_.pop_back();
    return true;
  }
  bool parse_error(std::size_t byte, const std::string&,
                   const nlohmann::detail::exception& error) override {
    if (dynamic_cast<const Json::parse_error*>(&error) == nullptr) fail("a number is too large");
    const std::size_t end = std::min(byte == 0 ? 0 : byte - 1, text_.size());
    const std::size_t lineStart = text_.substr(0, end).rfind('\n') + 1;
    throw SelectionError(
        fmt::format("line {}, column {}: this is no valid JSON", lineAt(end), end - lineStart + 1));
  }

 private:
  // An object or a list that is read, and a bit for each row of a key that it has so far.
  struct Level {
    LevelType type;
    std::uint32_t keys = 0;
  };
  // A conversion in the file with its whole id, and where it ends.
  struct ReadConversion {
    ChosenConversion chosen;
    std::size_t end = 0;
  };
  struct ReadClass {
    std::string name;
    std::string sha256;
    std::vector<ReadConversion> conversions;
  };

  LevelType level() const { return levels_.back().type; }

  std::size_t lineAt(std::size_t offset) const {
    const std::string_view before = text_.substr(0, offset);
    return static_cast<std::size_t>(std::ranges::count(before, '\n')) + 1;
  }

  [[noreturn]] void fail(const std::string& what) const { failAt(read_, what); }
  [[noreturn]] void failAt(std::size_t offset, const std::string& what) const {
    throw SelectionError(fmt::format("line {}: {}", lineAt(offset), what));
  }

  [[noreturn]] void failAtKey(std::string_view key) const {
    std::vector<std::string_view> known;
    for (const KeyRow& row : keyRows) {
      if (row.level == level()) known.push_back(row.key);
    }
    fail(fmt::format("unknown key \"{}\"; known are: {}", key, fmt::join(known, ", ")));
  }

  // The row of the value that is read now, which must have its type.
  const KeyRow& expect(ValueType type) const {
    const KeyRow* row = findKey(level(), key_);
    if (row == nullptr) row = findKey(level(), "");
    if (row->type == type) return *row;
    fail(fmt::format("{}expected {}, and not {}",
                     row->key.empty() ? "" : fmt::format("\"{}\": ", row->key), nameOf(row->type),
                     nameOf(type)));
  }

  bool takeValue(ValueType type) const {
    expect(type);
    return true;
  }

  void open(ValueType type) { levels_.push_back({expect(type).opens}); }

  void takeVersion(std::uint64_t version) {
    if (version != selectionVersion) {
      fail(fmt::format("version {} is unknown: this program reads version {}", version,
                       selectionVersion));
    }
    hasVersion_ = true;
  }

  void takeClassKey(std::string& value) {
    if (key_ == "class") class_.name = std::move(value);
    if (key_ == "sha256") class_.sha256 = std::move(value);
  }

  void takeConversionKey(std::string& value) {
    if (key_ == "id") conversion_.name = std::move(value);
    if (key_ != "risk") return;
    const auto* name = std::ranges::find(riskNames, value);
    if (name == riskNames.end()) {
      fail(fmt::format("unknown risk \"{}\"; known are: {}", value, fmt::join(riskNames, ", ")));
    }
    conversion_.accepted = static_cast<RiskType>(name - riskNames.begin());
  }

  void finishConversion() {
    if (conversion_.name.empty()) fail("a conversion lacks its \"id\"");
    if (levels_[levels_.size() - 2].type == LevelType::leftOut) return;
    class_.conversions.push_back({std::move(conversion_), read_});
  }

  void finishClass() {
    if (class_.name.empty()) fail("a class lacks its name: \"class\"");
    if (class_.sha256.empty()) {
      fail(fmt::format("class \"{}\" lacks the \"sha256\" of its file", class_.name));
    }
    checkIds();
    std::vector<ChosenConversion> chosen;
    for (ReadConversion& each : class_.conversions) {
      chosen.push_back({each.chosen.name.substr(class_.name.size() + 1), each.chosen.accepted});
    }
    ids_.add(class_.name, class_.sha256, chosen);
    classes_.emplace_back(std::move(class_.name), read_);
  }

  void checkIds() {
    const std::string start = class_.name + '#';
    for (const ReadConversion& each : class_.conversions) {
      const std::string& id = each.chosen.name;
      if (id.size() > start.size() && id.starts_with(start)) continue;
      failAt(each.end, fmt::format("\"{}\" is no id of class \"{}\"", id, class_.name));
    }
    std::ranges::stable_sort(class_.conversions, {}, idOf);
    const auto twice = std::ranges::adjacent_find(class_.conversions, {}, idOf);
    if (twice == class_.conversions.end()) return;
    failAt(std::next(twice)->end, fmt::format("\"{}\" is chosen twice, first in line {}",
                                              idOf(*twice), lineAt(twice->end)));
  }

  void finishFile() {
    if (!hasVersion_)
      fail(fmt::format("the \"version\" is missing, which is {}", selectionVersion));
    const auto nameOf = [](const auto& each) -> const std::string& { return each.first; };
    std::ranges::stable_sort(classes_, {}, nameOf);
    const auto twice = std::ranges::adjacent_find(classes_, {}, nameOf);
    if (twice == classes_.end()) return;
    failAt(std::next(twice)->second,
           fmt::format("class \"{}\" is listed twice, first up to line {}", twice->first,
                       lineAt(twice->second)));
  }

  static const std::string& idOf(const ReadConversion& conversion) {
    return conversion.chosen.name;
  }

  std::string_view text_;
  // The number of bytes that the parser has taken.
  std::size_t read_ = 0;
  std::vector<Level> levels_ = {{LevelType::top}};
  std::string key_;
  bool hasVersion_ = false;
  ReadClass class_;
  ChosenConversion conversion_;
  // The names of the classes, and where they end.
  std::vector<std::pair<std::string, std::size_t>> classes_;
  ChosenIds ids_;
};

}  // namespace

ChosenIds parseSelection(std::string_view json) { return SelectionReader(json).read(); }

}  // namespace soca
