// The options of the command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/terminal/Console.h"
#include "conversions/risk/Risk.h"
#include "reports/Summary.h"
#include "reports/UpdateReport.h"
#include "rules/RuleFamilies.h"
#include "soca/Updater.h"

namespace soca::cli {

enum class CommandType { update, actions, classes, check, explain, undo, help, version };

struct Options {
  CommandType command = CommandType::help;
  // With CommandType::help, the command to print help on; `help` itself for the whole program.
  CommandType helpSubject = CommandType::help;
  // Whether to print help on the command instead of running it.
  bool help = false;
  // In the given form. Without roots the current folder is the only one.
  std::vector<std::string> arguments;
  std::vector<std::string> roots;
  std::string classTable;
  // At least 1.
  unsigned jobs = 1;
  ColorType color = ColorType::automatic;
  bool quiet = false;
  bool verbose = false;
  RuleChoice rules;
  // As given; see `highestRisk`.
  std::optional<RiskType> risk;
  // Whether conversions whose edits meet are left out, instead of laying their lines apart.
  bool noLayout = false;
  // Patterns over the ids of conversions, of those to make and those to leave out.
  std::vector<std::string> only;
  std::vector<std::string> skip;
  // The file with the conversions to make; empty for none.
  std::string selectionFile;
  bool includeSuperclasses = false;
  bool write = false;
  bool check = false;
  // The command that verifies what was written; empty for none.
  std::string verify;
  // Whether edits leave the texts tidy, unlike those of the service.
  bool tidy = false;
  // Whether files that git could not restore may be changed.
  bool allowDirty = false;
  // Whether a folder includes what git ignores, and links to folders.
  bool noIgnore = false;
  // Whether the answers are those of the service, without the program's own checks of the tree.
  bool asService = false;
  // Whether to print the superclasses that are not found, in place of facts about classes.
  bool unresolved = false;
  // Whether to print the conversions of classes, or the runs that can be undone.
  bool list = false;
  // Whether to print what an undo would do instead of doing it.
  bool dryRun = false;
  // Whether to remove the journals of runs.
  bool forget = false;
  // Whether to print the time and memory of the run.
  bool stats = false;
  const ReportFormat* format = &reportFormats().front();
  bool edits = false;
  // Whether to print the numbers without diffs and lines.
  bool summary = false;
  // How to group the numbers; empty if it is not given.
  std::optional<GroupType> groupBy;
  // The file for the review page that is made beside the output; empty for none.
  std::string reportFile;
  // The path of the class whose text is read from standard input; empty for none.
  std::string stdinPath;

  // The highest risk of a conversion that is made. Those in a file were accepted with theirs.
  RiskType highestRisk() const {
    return risk.value_or(selectionFile.empty() ? RiskType::review : RiskType::unsafe);
  }
  bool hasSelection() const { return !only.empty() || !skip.empty() || !selectionFile.empty(); }

  // The options for a report.
  ReportOptions forReport() const {
    return {.quiet = quiet || summary,
            .summary = summary,
            .verbose = verbose,
            .write = write,
            .check = check,
            .edits = edits,
            .hasSelection = hasSelection(),
            .asService = asService};
  }
};

}  // namespace soca::cli
