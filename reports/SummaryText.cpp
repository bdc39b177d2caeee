#include "reports/SummaryText.h"

#include <fmt/core.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "reports/text/TextLayout.h"

namespace soca {
namespace {

// The kinds with their counts, the most frequent first.
using Counts = std::vector<std::pair<std::string_view, std::size_t>>;

Counts sorted(Counts counts) {
  std::erase_if(counts, [](const auto& count) { return count.second == 0; });
  std::ranges::stable_sort(counts, std::ranges::greater(), &Counts::value_type::second);
  return counts;
}

// "  findings: 12 SyntaxError, 1 NoFileForClass", wrapped into lines.
std::string listing(std::string_view name, const Counts& counts, std::size_t width) {
  std::string text;
  std::size_t column = 0;
  for (const auto& [kind, count] : sorted(counts)) {
    const std::string item = fmt::format("{} {}", count, kind);
    if (column > 0 && column + 2 + item.size() < width) {
      text += ", " + item;
      column += 2 + item.size();
      continue;
    }
    const std::string head =
        column == 0 ? fmt::format("  {}: ", name) : std::string(name.size() + 4, ' ');
    if (column > 0) text += ",\n";
    text += head + item;
    column = head.size() + item.size();
  }
  return text.empty() ? text : text + '\n';
}

Counts countsOf(const std::map<std::string, std::size_t>& countsById) {
  return {countsById.begin(), countsById.end()};
}

// Writes the parts of the summary line.
class SummaryLine {
 public:
  explicit SummaryLine(NumbersType numbers) : numbers_(numbers) {}

  std::string number(std::size_t count) const {
    return numbers_ == NumbersType::program ? groupDigits(count) : std::to_string(count);
  }

  std::string counted(std::size_t count, std::string_view one, std::string_view many) const {
    return fmt::format("{} {}", number(count), count == 1 ? one : many);
  }

  // "; 3 files in UTF-16", or nothing for 0.
  std::string more(std::size_t count, std::string_view one, std::string_view many) const {
    return count == 0 ? std::string() : "; " + counted(count, one, many);
  }

 private:
  NumbersType numbers_;
};

// --- tables ---

struct Row {
  std::string name;
  std::vector<std::size_t> numbers;
};

constexpr std::string_view gap = "  ";

class Table {
 public:
  Table(std::string_view title, std::vector<std::string_view> columns)
      : title_(title), columns_(std::move(columns)) {}

  void add(Row row) { rows_.push_back(std::move(row)); }

  // Adds a row with the sums, if there are several rows.
  void addTotal() {
    if (rows_.size() < 2) return;
    Row total{"total", std::vector<std::size_t>(columns_.size())};
    for (const Row& row : rows_) {
      for (std::size_t i = 0; i < columns_.size(); ++i) total.numbers[i] += row.numbers[i];
    }
    add(std::move(total));
  }

  // On a narrow screen the numbers are below the names.
  std::string text(std::size_t width) const {
    if (rows_.empty()) return {};
    std::size_t nameWidth = title_.size();
    for (const Row& row : rows_) nameWidth = std::max(nameWidth, gap.size() + row.name.size());
    const std::vector<std::size_t> widths = columnWidths();
    std::size_t lineWidth = gap.size() + nameWidth;
    for (const std::size_t each : widths) lineWidth += gap.size() + each;
    return lineWidth <= width ? wideText(nameWidth, widths) : narrowText(width);
  }

 private:
  std::vector<std::size_t> columnWidths() const {
    std::vector<std::size_t> widths;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      widths.push_back(columns_[i].size());
      for (const Row& row : rows_) {
        widths[i] = std::max(widths[i], groupDigits(row.numbers[i]).size());
      }
    }
    return widths;
  }

  std::string wideText(std::size_t nameWidth, const std::vector<std::size_t>& widths) const {
    std::string text = fmt::format("{}{:<{}}", gap, title_, nameWidth);
    for (std::size_t i = 0; i < widths.size(); ++i) {
      text += fmt::format("{}{:>{}}", gap, columns_[i], widths[i]);
    }
    text += '\n';
    for (const Row& row : rows_) {
      text += fmt::format("{}{}{:<{}}", gap, gap, row.name, nameWidth - gap.size());
      for (std::size_t i = 0; i < widths.size(); ++i) {
        text += fmt::format("{}{:>{}}", gap, groupDigits(row.numbers[i]), widths[i]);
      }
      text += '\n';
    }
    return text;
  }

  std::string narrowText(std::size_t width) const {
    std::string text = fmt::format("{}{}\n", gap, title_);
    for (const Row& row : rows_) {
      text += fmt::format("{}{}{}\n", gap, gap, row.name);
      std::string line = "     ";
      for (std::size_t i = 0; i < columns_.size(); ++i) {
        const bool isLast = i + 1 == columns_.size();
        const std::string item =
            fmt::format(" {} {}{}", groupDigits(row.numbers[i]), columns_[i], isLast ? "" : ",");
        if (line.size() + item.size() > width && line.size() > 5) {
          text += line + '\n';
          line = "     ";
        }
        line += item;
      }
      text += line + '\n';
    }
    return text;
  }

  std::string_view title_;
  std::vector<std::string_view> columns_;
  std::vector<Row> rows_;
};

// The counts below the title, in as many columns as fit.
std::string columns(std::string_view title, const Counts& unsortedCounts, std::size_t width) {
  const Counts counts = sorted(unsortedCounts);
  if (counts.empty()) return {};
  const std::size_t numberWidth = groupDigits(counts.front().second).size();
  std::size_t nameWidth = 0;
  for (const auto& [name, count] : counts) nameWidth = std::max(nameWidth, name.size());
  const std::size_t cellWidth = gap.size() + gap.size() + numberWidth + 1 + nameWidth;
  const std::size_t perLine = std::max<std::size_t>(1, width / cellWidth);
  std::string text = fmt::format("{}{}\n", gap, title);
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const bool isLast = (i + 1) % perLine == 0 || i + 1 == counts.size();
    text += fmt::format("{}{}{:>{}} {:<{}}", gap, gap, groupDigits(counts[i].second), numberWidth,
                        counts[i].first, isLast ? 0 : nameWidth);
    if (isLast) text += '\n';
  }
  return text;
}

// --- the groups ---

std::string_view reasonName(std::string_view reason) {
  return reason.empty() ? "the class is refused" : reason;
}

std::size_t sum(const PerKind<std::size_t>& kinds) {
  std::size_t total = 0;
  for (const ConversionKind& kind : conversionKinds) total += kinds[kind.type];
  return total;
}

std::string kindTable(const Summary& summary, std::size_t width) {
  PerKind<std::size_t> leftOut;
  Counts found;
  for (const ConversionKind& kind : conversionKinds) {
    for (const auto& [reason, kinds] : summary.leftOut) leftOut[kind.type] += kinds[kind.type];
    found.emplace_back(kind.name, summary.conversions[kind.type] + leftOut[kind.type]);
  }
  Table table("conversions", {"found", "made", "left out"});
  for (const auto& [name, count] : sorted(found)) {
    const auto type = std::ranges::find(conversionKinds, name, &ConversionKind::name)->type;
    table.add({std::string(name), {count, summary.conversions[type], leftOut[type]}});
  }
  table.addTotal();
  return table.text(width);
}

Counts reasonsOf(const Summary& summary) {
  Counts reasons;
  for (const auto& [reason, kinds] : summary.leftOut) reasons.emplace_back(reason, sum(kinds));
  return sorted(reasons);
}

std::string reasonTable(const Summary& summary, std::size_t width) {
  Table all("conversions", {"found", "made", "left out"});
  const std::size_t made = sum(summary.conversions);
  std::size_t leftOut = 0;
  for (const auto& [reason, count] : reasonsOf(summary)) leftOut += count;
  if (made + leftOut > 0) all.add({"total", {made + leftOut, made, leftOut}});
  Table table("left out", {"conversions"});
  for (const auto& [reason, count] : reasonsOf(summary)) {
    table.add({std::string(reasonName(reason)), {count}});
    Counts kinds;
    for (const ConversionKind& kind : conversionKinds) {
      kinds.emplace_back(kind.name, summary.leftOut.at(std::string(reason))[kind.type]);
    }
    for (const auto& [name, number] : sorted(kinds)) {
      table.add({fmt::format("{}{}", gap, name), {number}});
    }
  }
  return all.text(width) + table.text(width);
}

std::string packageTable(const Summary& summary, std::size_t width) {
  Table table("packages", {"classes", "found", "made", "left out", "findings", "failed"});
  for (const auto& [name, counts] : summary.packages) {
    table.add({name.empty() ? "(none)" : name,
               {counts.classes, counts.made + counts.leftOut, counts.made, counts.leftOut,
                counts.findings, counts.failed}});
  }
  table.addTotal();
  return table.text(width);
}

std::string groupTable(const Summary& summary, GroupType group, std::size_t width) {
  switch (group) {
    case GroupType::kinds:
      break;
    case GroupType::reasons:
      return reasonTable(summary, width);
    case GroupType::packages:
      return packageTable(summary, width);
  }
  return kindTable(summary, width);
}

std::string leftOutList(const Summary& summary, std::size_t width) {
  Counts reasons = reasonsOf(summary);
  for (auto& [reason, count] : reasons) reason = reasonName(reason);
  return columns("left out", reasons, width);
}

}  // namespace

std::string formatSummary(const Summary& summary, TenseType tense, NumbersType numbers) {
  const SummaryLine line(numbers);
  const std::size_t left = summary.classes - summary.changed - summary.refused;
  std::string text = fmt::format(
      "looked at {}: {} {}, {} as {}",
      line.counted(summary.classes + summary.failed, "class", "classes"),
      line.number(summary.changed), tense == TenseType::wouldChange ? "would change" : "changed",
      line.counted(left, "stays", "stay"), left == 1 ? "it is" : "they are");
  if (summary.refused > 0) text += fmt::format(", {} refused", line.number(summary.refused));
  if (summary.failed > 0) text += fmt::format(", {} failed", line.number(summary.failed));
  text += line.more(summary.undecided, "undecided", "undecided");
  text += line.more(summary.skipped, "other class skipped", "other classes skipped");
  text += line.more(summary.filesWithoutClass, "file without a class", "files without a class");
  text += line.more(summary.otherNames, "file without a class name", "files without a class name");
  text += line.more(summary.utf16Files, "file in UTF-16", "files in UTF-16");
  text += line.more(summary.passedOver, "passed over", "passed over");
  if (numbers == NumbersType::program) {
    text += line.more(summary.leftOutCount(), "conversion left out", "conversions left out");
  }
  text += line.more(summary.findings, "finding", "findings");
  text += line.more(summary.changesAgain, "changes again in a second update",
                    "change again in a second update");
  return text;
}

std::string formatDetails(const Summary& summary, std::size_t width) {
  Counts conversions;
  for (const ConversionKind& kind : conversionKinds) {
    conversions.emplace_back(kind.name, summary.conversions[kind.type]);
  }
  return listing("conversions", conversions, width) +
         listing("findings", countsOf(summary.findingsById), width) +
         listing("failures", countsOf(summary.failuresById), width);
}

std::string formatNumbers(const Summary& summary, GroupType group, std::size_t width) {
  std::string text = groupTable(summary, group, width);
  if (group != GroupType::reasons) text += leftOutList(summary, width);
  return text + columns("findings", countsOf(summary.findingsById), width) +
         columns("failed", countsOf(summary.failuresById), width) +
         columns("undecided", {{"SuperClassUnresolved", summary.undecided}}, width) +
         columns("skipped", countsOf(summary.skippedById), width);
}

}  // namespace soca
