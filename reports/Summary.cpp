#include "reports/Summary.h"

#include <fmt/core.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace soca {
namespace {

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

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

// The part of the id after its last colon.
std::string shortId(const std::string& id) { return id.substr(id.rfind(':') + 1); }

}  // namespace

ClassCounts::ClassCounts(const ClassOutcome& outcome)
    : isChanged(outcome.update.changed && !outcome.update.isRefused()),
      isRefused(outcome.update.isRefused()),
      changesAgain(outcome.update.changesAgain),
      isUncommitted(!outcome.writeRefusal.empty()) {
  for (const ConversionKind& kind : conversionKinds) {
    if (!isChanged) break;
    conversions[kind.type] = static_cast<std::uint32_t>(outcome.update.conversionCounts[kind.type]);
  }
  findings.reserve(outcome.update.findings.size());
  for (const Finding& finding : outcome.update.findings) {
    findings.push_back(finding.id);
  }
}

void Summary::add(const ClassCounts& counts) {
  ++classes;
  findings += counts.findings.size();
  changed += counts.isChanged ? 1 : 0;
  refused += counts.isRefused ? 1 : 0;
  changesAgain += counts.changesAgain ? 1 : 0;
  uncommitted += counts.isUncommitted ? 1 : 0;
  for (const ConversionKind& kind : conversionKinds) {
    conversions[kind.type] += counts.conversions[kind.type];
  }
  for (const std::string& id : counts.findings) ++findingsById[id];
}

void Summary::remove(const ClassCounts& counts) {
  --classes;
  findings -= counts.findings.size();
  changed -= counts.isChanged ? 1 : 0;
  refused -= counts.isRefused ? 1 : 0;
  changesAgain -= counts.changesAgain ? 1 : 0;
  uncommitted -= counts.isUncommitted ? 1 : 0;
  for (const ConversionKind& kind : conversionKinds) {
    conversions[kind.type] -= counts.conversions[kind.type];
  }
  for (const std::string& id : counts.findings) --findingsById[id];
}

void Summary::addFailure(const Failure& failure) {
  ++failed;
  ++failuresById[shortId(failure.id)];
}

void Summary::addPassedOver(PassedOverFile::Type type) {
  switch (type) {
    case PassedOverFile::Type::isNamed:
      ++passedOver;
      return;
    case PassedOverFile::Type::hasOtherName:
      ++otherNames;
      return;
    case PassedOverFile::Type::isUtf16:
      ++utf16Files;
      return;
  }
}

std::string formatSummary(const Summary& summary, TenseType tense) {
  const std::size_t left = summary.classes - summary.changed - summary.refused;
  std::string text =
      fmt::format("looked at {}: {} {}, {} as {}",
                  counted(summary.classes + summary.failed, "class", "classes"), summary.changed,
                  tense == TenseType::wouldChange ? "would change" : "changed",
                  counted(left, "stays", "stay"), left == 1 ? "it is" : "they are");
  if (summary.refused > 0) text += fmt::format(", {} refused", summary.refused);
  if (summary.failed > 0) text += fmt::format(", {} failed", summary.failed);
  if (summary.undecided > 0) text += fmt::format("; {} undecided", summary.undecided);
  if (summary.skipped > 0) {
    text += fmt::format("; {} skipped", counted(summary.skipped, "other class", "other classes"));
  }
  if (summary.filesWithoutClass > 0) {
    text +=
        fmt::format("; {} without a class", counted(summary.filesWithoutClass, "file", "files"));
  }
  if (summary.otherNames > 0) {
    text += fmt::format("; {} without a class name", counted(summary.otherNames, "file", "files"));
  }
  if (summary.utf16Files > 0) {
    text += fmt::format("; {} in UTF-16", counted(summary.utf16Files, "file", "files"));
  }
  if (summary.passedOver > 0) text += fmt::format("; {} passed over", summary.passedOver);
  if (summary.findings > 0) {
    text += fmt::format("; {}", counted(summary.findings, "finding", "findings"));
  }
  if (summary.changesAgain > 0) {
    text += fmt::format("; {} again in a second update",
                        counted(summary.changesAgain, "changes", "change"));
  }
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

}  // namespace soca
