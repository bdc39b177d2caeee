// The lines that an edit begins and ends, and their line ends.
#pragma once

#include <optional>
#include <vector>

#include "model/Extent.h"
#include "model/SourceFile.h"
#include "service/PlannedClass.h"

namespace soca {

// In all of these, `file` has the old text of the class, and no action is applied to it yet.

// The extent of the edit with the delimiters after it that it also replaces; empty if the edit
// cannot be applied.
std::optional<Extent> findReplaced(const SourceFile& file, const PlannedEdit& edit);

// Whether the first line of the replaced extent keeps a line end, though the edit replaces it: what
// follows the edit is then removed, or on a line of its own, in place of being joined to that line.
bool endsFirstLine(const SourceFile& file, const Extent& replaced);

// Gives the lines that edits insert the line end of the line at which the edit begins.
void adaptInsertedLineEnds(const SourceFile& file, std::vector<PlannedAction>& actions);

// Adds the U+000D of a line to the edits that replace it and leave the line a line end.
void keepCarriageReturns(const SourceFile& file, std::vector<PlannedAction>& actions);

}  // namespace soca
