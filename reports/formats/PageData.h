// The data of the review page, in a compact form that the page reads class by class.
#pragma once

#include <string>

#include "reports/UpdateReport.h"
#include "reports/outcomes/Outcome.h"

namespace soca {

// Two lines of JSON for a class, each with a line end; nothing in them can end a script element.
// The first one has all by which the page searches and counts:
//
//   ["a.B", "src/a/B.vlm", "9f86...", 1, [conversion, ...], [message, ...]]
//
// The number is a sum: 1 if the file would change, 2 if the update is refused, 4 if `--write` would
// refuse it. A message is the number of an explanation, or an id without one. A conversion is
//
//   [kind, "Gain~2", risk, left out, line, [reason, ...], [need, ...], "newName"]
//
// where kind and risk are numbers in their tables, `left out` is -1 or the reason, and a need is
// the index of another conversion of the class; what is empty at the end is omitted. The second
// line has the hunks, the texts of the reasons, the findings and the notes:
//
//   [[[line, "old text", [gap, length, "new", conversion, ...], ...], ...],
//    [[conversion, "text", ...], ...],
//    [[message, line, column, endColumn, "detail", "argument", ...], ...],
//    ["note", ...]]
//
// Lengths and columns count UTF-16 code units; lines and columns are one-based, in the text as it
// was read. The first text is that of the reason for leaving out, the others those of the risk.
// A class without anything to show has only its name in the first line, and the second is empty.
std::string pageLinesOf(const ClassOutcome& outcome, const FileNames& names);

// The parts of the page after the classes, as one line of JSON: the tables to which the numbers
// refer, and the commands of the run.
std::string pageTables(const ReportOptions& options, ExitCodeType exitCode);

// A class that failed, is undecided or was skipped: ["a.B", message, "text", ["hint", ...]].
std::string pageFailure(const Failure& failure);

}  // namespace soca
