#include "cli/Summary.h"

#include <fmt/core.h>

#include <string_view>

namespace soca::cli {
namespace {

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

void Summary::add(const ClassOutcome& outcome) {
  ++classes;
  findings += outcome.findings.size();
  if (outcome.isRefused()) {
    ++refused;
  } else if (outcome.changed) {
    ++changed;
  }
  if (outcome.changesAgain) ++changesAgain;
  if (!outcome.writeRefusal.empty()) ++uncommitted;
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
  if (summary.skipped > 0) {
    text += fmt::format("; {} skipped", counted(summary.skipped, "other class", "other classes"));
  }
  if (summary.filesWithoutClass > 0) {
    text +=
        fmt::format("; {} without a class", counted(summary.filesWithoutClass, "file", "files"));
  }
  if (summary.findings > 0) {
    text += fmt::format("; {}", counted(summary.findings, "finding", "findings"));
  }
  if (summary.changesAgain > 0) {
    text += fmt::format("; {} again in a second update",
                        counted(summary.changesAgain, "changes", "change"));
  }
  return text;
}

}  // namespace soca::cli
