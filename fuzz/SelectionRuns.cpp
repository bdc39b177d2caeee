// Makes random selections of the conversions of a tree, and checks what the program makes of them:
//   random_selections --tree DIR [--count N] [--seed N] [--risk RISK]
// Of each selection exactly the chosen conversions are made, but for those that are reported with a
// reason. One half of the conversions, then the other, and then what was reported of the first two,
// gives what all give at once.
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/ToolOptions.h"
#include "fuzz/Violation.h"
#include "model/BlockParts.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/text/Conversions.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::fuzz {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using Ids = std::set<std::string>;
using Files = std::map<std::string, std::string>;

// A copy of the tree in which files are written.
class TreeCopy {
 public:
  TreeCopy(const fs::path& tree, std::string risk) : risk_(std::move(risk)) {
    fs::copy(tree, space_.path() / "tree", fs::copy_options::recursive);
  }

  // What the update would make and leave out.
  Json list() const {
    return Json::parse(run({"--list", "--format", "json", "--risk", risk_}).out);
  }

  void update() const { run({"--write", "-q", "--risk", risk_}); }

  // Returns what is reported of the update.
  Json update(const Json& selection) const {
    space_.write("selection.json", selection.dump());
    return Json::parse(run({"--write", "--selection", "selection.json", "--format", "json"}).out);
  }

  Files files() const {
    Files files = space_.readAll();
    files.erase("selection.json");
    return files;
  }

 private:
  testing::ProgramResult run(std::vector<std::string> options) const {
    options.insert(options.begin(), {"update", "-p", "tree", "--allow-dirty", "--no-ignore"});
    auto result = space_.soca(options);
    require(result.exitCode == 0 || result.exitCode == 2, "exit code {}: {}", result.exitCode,
            result.err);
    return result;
  }

  testing::Workspace space_;
  std::string risk_;
};

// The parts of the list that are chosen. Any risk is accepted.
Json select(const Json& list, const Ids& chosen) {
  Json selection = {{"version", list.at("version")}, {"classes", Json::array()}};
  for (const Json& each : list.at("classes")) {
    Json entry = {{"class", each.at("class")}, {"sha256", each.at("sha256")}};
    const std::string start = each.at("class").get<std::string>() + '#';
    for (auto id = chosen.lower_bound(start); id != chosen.end() && id->starts_with(start); ++id) {
      entry["conversions"].push_back({{"id", *id}});
    }
    if (entry.contains("conversions")) selection["classes"].push_back(std::move(entry));
  }
  return selection;
}

// The id without its number. A declaration that is renamed has another id in the next run, and
// numbers change when declarations are deleted, so these belong to one half.
std::string subjectOf(const std::string& id) {
  const std::size_t kind = id.find('#') + 1;
  const std::size_t member = id.find(':', kind);
  if (member == std::string::npos) return id;
  const bool isBlock = id.compare(kind, 22, "attributes/empty-block") == 0;
  const std::string name = id.substr(member, id.find('~', member) - member);
  return id.substr(0, kind) + (isBlock ? "block" : name);
}

std::string replaced(std::string text, std::string_view what, std::string_view with) {
  const std::size_t place = text.find(what);
  return place == std::string::npos ? text : text.replace(place, what.size(), with);
}

// The id that the conversion has in a later run, in which its method may have another name and
// declarations other numbers.
std::string laterId(const std::string& id) {
  return replaced(replaced(id.substr(0, id.find('~')), "Locked", "Mutable"), "InputSizeChange",
                  "InputSpecificationChange");
}

// The attributes of a block in the order of their names and in one form. Blocks are joined that
// have the same access and the same logical attributes, and get the others of the first one.
std::string attributesOf(const ca::AnalysisResult& analysis, const ca::astapi::BlockNode& block) {
  std::set<std::string> attributes;
  for (const AttributeText& each : blockParts::attributeTexts(analysis, block)) {
    const std::string name = fl::i18n::to_string(each.name);
    std::string value = fl::i18n::to_string(each.value.value_or(each.negated ? u"false" : u"true"));
    if (!name.ends_with("Access") && value != "true" && value != "false") continue;
    std::erase_if(value, [](char quote) { return quote == '\'' || quote == '"'; });
    attributes.insert(fmt::format("{}={}", name, value));
  }
  return fmt::format("{}", fmt::join(attributes, ", "));
}

// What a class file declares: its superclasses, and each property and method with the attributes of
// its block. Which blocks are joined depends on the conversions that are made in the same run. A
// file with syntax errors is its text.
std::vector<std::string> declarationsIn(const std::string& bytes) {
  const auto analysis = ca::analyzeText(fl::decodeFileText(bytes).text);
  const auto* classdef = analysis->getClassdef();
  if (analysis->hasSyntaxError() || classdef == nullptr) return {bytes};
  std::vector<std::string> list;
  for (const auto* name : classdef->superClasses) {
    list.push_back(fl::i18n::to_string(name->text.view()));
  }
  const auto add = [&](const auto& blocks) {
    for (const auto* block : blocks) {
      for (const auto* member : block->members) {
        list.push_back(fmt::format("({}) {}", attributesOf(*analysis, *block),
                                   fl::i18n::to_string(analysis->nodeTextView(*member))));
      }
    }
  };
  add(classdef->getPropertiesBlocks());
  add(classdef->getMethodsBlocks());
  return list;
}

class RandomSelections {
 public:
  RandomSelections(fs::path tree, std::string risk)
      : tree_(std::move(tree)), risk_(std::move(risk)) {
    const TreeCopy unchanged(tree_, risk_);
    list_ = unchanged.list();
    for (const Json& each : list_.at("classes")) {
      for (const Json& conversion : each.at("conversions")) take(conversion);
    }
  }

  // What is listed gives what an update makes.
  void checkList() {
    const TreeCopy listed(tree_, risk_);
    listed.update(list_);
    const TreeCopy updated(tree_, risk_);
    updated.update();
    require(listed.files() == updated.files(), "the list gives something else than the update");
    const TreeCopy whole(tree_, risk_);
    whole.update(select(list_, all_));
    whole_ = whole.files();
    requireSame(whole_, updated.files(), "the ids without risks give something else");
  }

  // Selects some of all ids, each by itself.
  void checkSome(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    Ids chosen;
    for (const std::string& id : all_) {
      if (random() % 2 == 0) chosen.insert(id);
    }
    checkMade(TreeCopy(tree_, risk_).update(select(list_, chosen)), chosen);
  }

  void checkHalves(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    Ids half;
    Ids rest;
    std::map<std::string, bool> isFirst;
    for (const std::string& id : all_) {
      const auto side = isFirst.emplace(groupOf(id), random() % 2 == 0).first;
      (side->second ? half : rest).insert(id);
    }
    const TreeCopy copy(tree_, risk_);
    Ids reported = checkMade(copy.update(select(list_, half)), half);
    reported.merge(checkMade(copy.update(select(copy.list(), rest)), rest));
    Ids faulty;
    if (!reported.empty()) {
      const Json list = copy.list();
      const Ids again = findAgain(list, reported);
      faulty = checkMade(copy.update(select(list, again)), again);
    }
    requireSame(withoutClassesOf(faulty, copy.files()), whole_,
                "two halves give something else than the whole");
  }

  std::size_t size() const { return all_.size(); }
  const std::map<std::string, std::size_t>& reasons() const { return reasons_; }
  // The conversions whose classes were not compared.
  std::size_t notCompared() const { return notCompared_; }

 private:
  void take(const Json& conversion) {
    const std::string id = conversion.at("id");
    all_.insert(id);
    for (const std::string other : conversion.value("needs", Json::array())) {
      const std::string from = groupOf(id);
      for (auto& [member, group] : groups_) {
        if (group == from) group = groupOf(other);
      }
      groups_[subjectOf(id)] = groupOf(other);
    }
  }

  // The group of conversions that are in one half.
  std::string groupOf(const std::string& id) const {
    const std::string subject = subjectOf(id);
    const auto group = groups_.find(subject);
    return group == groups_.end() ? subject : group->second;
  }

  // The ids in the list that the conversions have after other ones were made.
  static Ids findAgain(const Json& list, const Ids& ids) {
    Ids wanted;
    for (const std::string& id : ids) wanted.insert(laterId(id));
    Ids found;
    for (const Json& each : list.at("classes")) {
      for (const char* key : {"conversions", "leftOut"}) {
        for (const Json& conversion : each.at(key)) {
          if (wanted.contains(laterId(conversion.at("id")))) found.insert(conversion.at("id"));
        }
      }
    }
    return found;
  }

  // Which blocks are joined depends on what is made in one run, and some cannot be joined at all.
  // So the classes with conversions that are reported once more are not compared.
  Files withoutClassesOf(const Ids& faulty, Files files) {
    notCompared_ += faulty.size();
    for (const std::string& id : faulty) {
      std::string path = id.substr(0, id.find('#'));
      std::ranges::replace(path, '.', '/');
      files.erase(fmt::format("tree/{}.vlm", path));
    }
    return files;
  }

  // Whether exactly the chosen ones are made, but for those that are reported. Returns these.
  Ids checkMade(const Json& report, const Ids& chosen) {
    Ids missing = chosen;
    Ids reported;
    for (const Json& result : report.at("results")) {
      for (const Json& each : result.at("conversions")) {
        const std::string id = each.at("id");
        const bool isMade = each.at("made");
        require(!isMade || chosen.contains(id), "'{}' is made and was not chosen", id);
        if (missing.erase(id) > 0 && !isMade) {
          const std::string reason = each.at("leftOut").at("id");
          require(reason != "soca:NotSelected", "'{}' is chosen and not selected", id);
          ++reasons_[reason];
          reported.insert(id);
        }
      }
    }
    for (const Json& each : report.value("notFound", Json::array())) {
      missing.erase(each.at("id").get<std::string>());
      reported.insert(each.at("id"));
      ++reasons_["soca:ConversionNotFound"];
    }
    require(missing.empty(), "'{}' is neither made nor reported",
            missing.empty() ? "" : *missing.begin());
    return reported;
  }

  static void requireSame(const Files& left, const Files& right, std::string_view what) {
    for (const auto& [name, bytes] : left) {
      if (right.at(name) == bytes) continue;
      const auto first = declarationsIn(bytes);
      const auto second = declarationsIn(right.at(name));
      const auto [one, other] = std::ranges::mismatch(first, second);
      if (one == first.end() && other == second.end()) continue;
      throw Violation(fmt::format("{}: {}\n  {}\n  {}", what, name, one == first.end() ? "" : *one,
                                  other == second.end() ? "" : *other));
    }
  }

  fs::path tree_;
  std::string risk_;
  Json list_;
  // The ids that the update would make, and the subjects that are in the group of another one.
  Ids all_;
  std::map<std::string, std::string> groups_;
  Files whole_;
  std::map<std::string, std::size_t> reasons_;
  std::size_t notCompared_ = 0;
};

}  // namespace
}  // namespace soca::fuzz

int main(int argc, char** argv) try {
  std::string tree;
  std::string risk = "review";
  std::uint64_t count = 5;
  std::uint64_t seed = 1;
  const auto exitCode = bench::parseToolOptions("Makes random selections of conversions",
                                                {{"--tree", "The root of the classes", &tree},
                                                 {"--risk", "The highest risk", &risk},
                                                 {"--count", "How many selections", &count},
                                                 {"--seed", "The first seed", &seed}},
                                                argc, argv);
  if (exitCode) return *exitCode;
  soca::fuzz::RandomSelections selections(std::filesystem::absolute(tree), risk);
  selections.checkList();
  int violations = 0;
  for (std::uint64_t each = seed; each < seed + count; ++each) {
    try {
      selections.checkSome(each);
      selections.checkHalves(each);
    } catch (const soca::fuzz::Violation& violation) {
      fmt::print(stderr, "seed {}: {}\n", each, violation.what());
      ++violations;
    }
  }
  fmt::print("{} selections of {} conversions, {} faulty conversions, {} violations\n", 2 * count,
             selections.size(), selections.notCompared(), violations);
  for (const auto& [reason, number] : selections.reasons()) {
    fmt::print("  {} {}\n", number, reason);
  }
  return violations == 0 ? 0 : 1;
} catch (const std::exception& error) {
  fmt::print(stderr, "random_selections: {}\n", error.what());
  return 1;
}
