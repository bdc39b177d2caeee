// The report of an update, and its formats.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "files/targets/ClassRoots.h"
#include "files/targets/RootSearch.h"
#include "reports/ExitCodes.h"
#include "reports/ReportOutput.h"
#include "reports/outcomes/ClassUpdater.h"
#include "reports/outcomes/Outcome.h"
#include "reports/text/FileNames.h"

namespace soca {

// The number of lines of one kind that a quiet run prints.
inline constexpr std::size_t mostInQuietRun = 10;

// One format. The output for a class has two parts, which any thread can make: data for standard
// output, and notes for users.
class UpdateReport {
 public:
  virtual ~UpdateReport() = default;

  // Both may be called by several threads at once. Empty if there is nothing to print.
  virtual std::string dataOf(const ClassOutcome& outcome) const = 0;
  virtual std::string notesOf(const ClassOutcome& outcome) const = 0;
  // Prints what the functions above returned, if that was not empty.
  virtual void printData(const std::string& data) = 0;
  virtual void printNotes(const std::string& notes) = 0;

  virtual void addFailure(const Failure& failure) = 0;
  virtual void addSkipped(const Failure& failure) = 0;
  virtual void addUndecided(const Failure& failure) = 0;
  // Takes a conversion that was selected and is neither made nor left out, with the reason.
  virtual void addNotFound(const std::string& id, const std::string& reason) = 0;
  // Takes the roots that the run should have had. The client prints them for people.
  virtual void addSuggestion(const SuggestedRoots& suggestion, const std::string& text) = 0;
  // Prints the end of the output. `exitCode` is the exit code of the run.
  virtual void finish(ExitCodeType exitCode) = 0;
};

// The properties of a run on which formats depend.
struct ReportOptions {
  // Whether there are no diffs and no findings, and of each reason only the first lines.
  bool quiet = false;
  // Whether only numbers are to be printed, and failures.
  bool summary = false;
  bool verbose = false;
  // Whether the run writes files, or prints only the names of the classes that would change.
  bool write = false;
  bool check = false;
  // Whether the single replacements are to be printed.
  bool edits = false;
  // Whether conversions were selected one by one: then most others are not worth a line.
  bool hasSelection = false;
  // Whether the data have the form that a run as the service has: without what the program itself
  // decides.
  bool asService = false;
  // What a person types to run it again, up to the arguments and with them: "soca update -p src".
  std::string command = "soca update";
  std::string arguments;
};

// All must outlive the report.
struct ReportContext {
  const ReportOptions* options;
  const ClassRoots* roots;
  const FileNames* names;
  ReportOutput* output;
};

struct ReportFormat {
  // The word for the format on the command line.
  std::string_view name;
  // What it prints, as the rest of a sentence that begins with the name; empty if that is obvious.
  std::string_view description;
  // Whether users read it: then the run may print text of its own too, and prints a file that
  // several classes share once.
  bool isForPeople;
  bool takesEdits;
  // Whether it can show the answers of the service.
  bool isForService;
  // Why it cannot be combined with `--write`; empty if it can.
  std::string_view whyNotWritten;
  OutcomeNeeds (*needs)(const ReportOptions& options);
  std::unique_ptr<UpdateReport> (*make)(const ReportContext& context);
  // The format that lists the conversions instead; null if there is none.
  const ReportFormat* list = nullptr;
};

// The first one is the default.
std::span<const ReportFormat> reportFormats();

// The format of the review page.
const ReportFormat& pageFormat();

}  // namespace soca
