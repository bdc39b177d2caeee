#include "cli/options/OptionValues.h"

#include <fmt/ranges.h>
#include <sched.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <utility>

#include "files/targets/ClassRoots.h"
#include "files/targets/NearestName.h"
#include "files/targets/UsageError.h"

namespace soca::cli {
namespace {

constexpr unsigned mostJobs = 1024;

constexpr auto groups = std::to_array<std::pair<std::string_view, GroupType>>(
    {{"kind", GroupType::kinds}, {"reason", GroupType::reasons}, {"package", GroupType::packages}});

constexpr auto colors = std::to_array<std::pair<std::string_view, ColorType>>(
    {{"auto", ColorType::automatic}, {"always", ColorType::always}, {"never", ColorType::never}});

template <class Rows, class Projection>
std::vector<std::string_view> namesIn(const Rows& rows, Projection nameOf) {
  std::vector<std::string_view> names;
  for (const auto& row : rows) names.push_back(std::invoke(nameOf, row));
  return names;
}

// `what` describes a valid value.
UsageError unknownWord(std::string_view what, std::string_view value,
                       const std::vector<std::string_view>& words) {
  return UsageError(fmt::format("unknown {} '{}'; known are: {}{}", what, value,
                                fmt::join(words, ", "), didYouMean(value, words, std::identity())));
}

void addRule(std::string_view name, RuleChoice& rules) {
  const auto* family = std::ranges::find(ruleFamilies, name, &RuleFamily::name);
  if (family != ruleFamilies.end()) return rules.add(family->type);
  const auto* kind = std::ranges::find(conversionKinds, name, &ConversionKind::name);
  if (kind == conversionKinds.end()) throw unknownWord("rule", name, ruleWords());
  rules.add(kind->type);
}

}  // namespace

std::vector<std::string_view> ruleWords() {
  auto words = namesIn(ruleFamilies, &RuleFamily::name);
  for (const ConversionKind& kind : conversionKinds) {
    if (std::ranges::find(words, kind.name) == words.end()) words.push_back(kind.name);
  }
  return words;
}

std::vector<std::string_view> riskWords() { return {riskNames.begin(), riskNames.end()}; }

std::vector<std::string_view> groupWords() {
  return namesIn(groups, [](const auto& row) { return row.first; });
}

std::vector<std::string_view> formatWords() {
  return namesIn(reportFormats(), &ReportFormat::name);
}

std::vector<std::string_view> colorWords() {
  return namesIn(colors, [](const auto& row) { return row.first; });
}

void readRules(const std::string& value, Options& options) {
  options.rules = RuleChoice::none();
  std::string_view list = value;
  while (true) {
    const std::size_t comma = list.find(',');
    addRule(list.substr(0, comma), options.rules);
    if (comma == std::string_view::npos) return;
    list.remove_prefix(comma + 1);
  }
}

void readRisk(const std::string& value, Options& options) {
  const auto* name = std::ranges::find(riskNames, value);
  if (name == riskNames.end()) throw unknownWord("risk", value, riskWords());
  options.risk = static_cast<RiskType>(name - riskNames.begin());
}

void readGroup(const std::string& value, Options& options) {
  const auto* group = std::ranges::find(groups, value, [](const auto& row) { return row.first; });
  if (group == groups.end()) throw unknownWord("value of --group-by", value, groupWords());
  options.groupBy = group->second;
}

void readFormat(const std::string& value, Options& options) {
  const auto format = std::ranges::find(reportFormats(), value, &ReportFormat::name);
  if (format == reportFormats().end()) throw unknownWord("format", value, formatWords());
  options.format = &*format;
}

void readColor(const std::string& value, Options& options) {
  const auto color = parseColor(value);
  if (!color) throw unknownWord("value of --color", value, colorWords());
  options.color = *color;
}

void readJobs(const std::string& value, Options& options) {
  const char* const end = value.data() + value.size();
  const auto [rest, error] = std::from_chars(value.data(), end, options.jobs);
  const bool isNumber = error == std::errc() && rest == end;
  if (!isNumber || options.jobs == 0 || options.jobs > mostJobs) {
    throw UsageError(
        fmt::format("--jobs takes a number from 1 to {}, and not '{}'", mostJobs, value));
  }
}

void readVerify(const std::string& value, Options& options) {
  if (value.empty()) throw UsageError("--verify takes a command for the shell");
  options.verify = value;
}

void readStdinPath(const std::string& value, Options& options) {
  if (value.empty()) throw UsageError("--stdin-path takes the path of a class file");
  options.stdinPath = value;
}

void readSelectionFile(const std::string& value, Options& options) {
  if (value.empty()) throw UsageError("--selection takes the name of a file");
  options.selectionFile = value;
}

void readReportFile(const std::string& value, Options& options) {
  if (value.empty()) throw UsageError("--report takes the name of a file");
  if (stemOfClassFile(value)) {
    throw UsageError(fmt::format("--report would replace a class file: '{}'", value));
  }
  options.reportFile = value;
}

void readClassTable(const std::string& value, Options& options) {
  if (value.empty()) throw UsageError("--class-table takes the name of a file");
  options.classTable = value;
}

std::optional<ColorType> parseColor(std::string_view word) {
  for (const auto& [text, color] : colors) {
    if (text == word) return color;
  }
  return std::nullopt;
}

unsigned numberOfProcessors() {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  if (sched_getaffinity(0, sizeof(processors), &processors) != 0) return 1;
  return static_cast<unsigned>(std::max(1, CPU_COUNT(&processors)));
}

}  // namespace soca::cli
