#include "reports/Summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <sstream>
#include <utility>

namespace soca {
namespace {

// The part of the id after its last colon.
std::string shortId(const std::string& id) { return id.substr(id.rfind(':') + 1); }

std::string packageOf(const std::string& className) {
  const std::size_t dot = className.rfind('.');
  return dot == std::string::npos ? std::string() : className.substr(0, dot);
}

void addTo(std::vector<LeftOutCount>& counts, const std::string& reason, ConversionKindType kind,
           std::size_t number) {
  if (number == 0) return;
  const auto same = std::ranges::find_if(
      counts, [&](const LeftOutCount& each) { return each.kind == kind && each.reason == reason; });
  auto& count = same == counts.end() ? counts.emplace_back(reason, kind, 0U) : *same;
  count.count += static_cast<std::uint32_t>(number);
}

}  // namespace

ClassCounts::ClassCounts(const ClassOutcome& outcome)
    : package(packageOf(outcome.update.className)),
      isChanged(outcome.update.changed && !outcome.update.isRefused()),
      isRefused(outcome.update.isRefused()),
      changesAgain(outcome.update.changesAgain),
      isUncommitted(!outcome.writeRefusal.empty()) {
  for (const ConversionKind& kind : conversionKinds) {
    const std::size_t number = outcome.update.conversionCounts[kind.type];
    if (isChanged) conversions[kind.type] = static_cast<std::uint32_t>(number);
    if (isRefused) addTo(leftOut, {}, kind.type, number);
  }
  for (const Conversion& conversion : outcome.update.conversions) {
    if (conversion.leftOut) addTo(leftOut, conversion.leftOut->id, conversion.kind, 1);
  }
  findings.reserve(outcome.update.findings.size());
  for (const Finding& finding : outcome.update.findings) {
    findings.push_back(finding.id);
  }
}

std::string pack(const ClassCounts& counts) {
  std::string text = fmt::format("{}\n{:d} {:d} {:d} {:d}", counts.package, counts.isChanged,
                                 counts.isRefused, counts.changesAgain, counts.isUncommitted);
  for (const ConversionKind& kind : conversionKinds) {
    fmt::format_to(std::back_inserter(text), " {}", counts.conversions[kind.type]);
  }
  fmt::format_to(std::back_inserter(text), " {}", counts.leftOut.size());
  for (const LeftOutCount& each : counts.leftOut) {
    fmt::format_to(std::back_inserter(text), " \"{}\" {} {}", each.reason,
                   static_cast<unsigned>(each.kind), each.count);
  }
  for (const std::string& each : counts.findings) text += ' ' + each;
  return text;
}

ClassCounts unpackCounts(const std::string& text) {
  std::istringstream input(text);
  ClassCounts counts;
  std::getline(input, counts.package);
  input >> counts.isChanged >> counts.isRefused >> counts.changesAgain >> counts.isUncommitted;
  for (const ConversionKind& kind : conversionKinds) input >> counts.conversions[kind.type];
  std::size_t leftOut = 0;
  input >> leftOut;
  for (; leftOut > 0; --leftOut) {
    LeftOutCount& each = counts.leftOut.emplace_back();
    unsigned kind = 0;
    input >> std::quoted(each.reason) >> kind >> each.count;
    each.kind = static_cast<ConversionKindType>(kind);
  }
  for (std::string finding; input >> finding;) counts.findings.push_back(std::move(finding));
  return counts;
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
  for (const LeftOutCount& each : counts.leftOut) leftOut[each.reason][each.kind] += each.count;
  for (const std::string& id : counts.findings) ++findingsById[id];
  if (countsPackages) addToPackage(counts);
}

void Summary::addToPackage(const ClassCounts& counts) {
  PackageCounts& package = packages[counts.package];
  ++package.classes;
  package.findings += counts.findings.size();
  package.failed += counts.isRefused ? 1 : 0;
  for (const ConversionKind& kind : conversionKinds) package.made += counts.conversions[kind.type];
  for (const LeftOutCount& each : counts.leftOut) package.leftOut += each.count;
}

void Summary::remove(const ClassCounts& counts) {
  --classes;
  findings -= counts.findings.size();
  changed -= counts.isChanged ? 1 : 0;
  refused -= counts.isRefused ? 1 : 0;
  changesAgain -= counts.changesAgain ? 1 : 0;
  uncommitted -= counts.isUncommitted ? 1 : 0;
  for (const LeftOutCount& each : counts.leftOut) leftOut[each.reason][each.kind] -= each.count;
  for (const std::string& id : counts.findings) --findingsById[id];
  removeConversions(counts);
  if (!countsPackages) return;
  PackageCounts& package = packages[counts.package];
  --package.classes;
  package.findings -= counts.findings.size();
  package.failed -= counts.isRefused ? 1 : 0;
  for (const LeftOutCount& each : counts.leftOut) package.leftOut -= each.count;
}

void Summary::removeConversions(const ClassCounts& counts) {
  for (const ConversionKind& kind : conversionKinds) {
    conversions[kind.type] -= counts.conversions[kind.type];
    if (countsPackages) packages[counts.package].made -= counts.conversions[kind.type];
  }
}

void Summary::removeUnwritten(const ClassCounts& counts) {
  --changed;
  --classes;
  if (countsPackages) --packages[counts.package].classes;
  removeConversions(counts);
}

void Summary::addToPackage(const Failure& failure) {
  if (!countsPackages || failure.className.find('/') != std::string::npos) return;
  PackageCounts& package = packages[packageOf(failure.className)];
  ++package.classes;
  ++package.failed;
}

void Summary::addFailure(const Failure& failure) {
  ++failed;
  ++failuresById[shortId(failure.id)];
  addToPackage(failure);
}

void Summary::addUndecided(const Failure& failure) {
  ++undecided;
  addToPackage(failure);
}

void Summary::addSkipped(const Failure& failure) {
  ++skipped;
  ++skippedById[shortId(failure.id)];
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

std::size_t Summary::leftOutCount() const {
  std::size_t sum = 0;
  for (const auto& [reason, kinds] : leftOut) {
    if (reason.empty()) continue;
    for (const ConversionKind& kind : conversionKinds) sum += kinds[kind.type];
  }
  return sum;
}

}  // namespace soca
