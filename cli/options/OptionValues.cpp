#include "cli/options/OptionValues.h"

#include <fmt/ranges.h>
#include <sched.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <utility>

#include "files/targets/NearestName.h"
#include "files/targets/UsageError.h"

namespace soca::cli {
namespace {

constexpr unsigned mostJobs = 1024;

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

std::uint64_t bitOfRule(std::string_view name) {
  const auto* family = std::ranges::find(ruleFamilies, name, &RuleFamily::name);
  if (family == ruleFamilies.end()) throw unknownWord("rule", name, ruleWords());
  return family->bit;
}

}  // namespace

std::vector<std::string_view> ruleWords() { return namesIn(ruleFamilies, &RuleFamily::name); }

std::vector<std::string_view> formatWords() {
  return namesIn(reportFormats(), &ReportFormat::name);
}

std::vector<std::string_view> colorWords() {
  return namesIn(colors, [](const auto& row) { return row.first; });
}

void readRules(const std::string& value, Options& options) {
  options.rules = 0;
  std::string_view list = value;
  while (true) {
    const std::size_t comma = list.find(',');
    options.rules |= bitOfRule(list.substr(0, comma));
    if (comma == std::string_view::npos) return;
    list.remove_prefix(comma + 1);
  }
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

void readStdinPath(const std::string& value, Options& options) {
  if (value.empty()) throw UsageError("--stdin-path takes the path of a class file");
  options.stdinPath = value;
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
