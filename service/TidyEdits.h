// Edits that leave a class as tidy as a person would.
#pragma once

#include "metadata/MetaDataInterface.h"
#include "model/ClassDefinition.h"
#include "model/SourceFile.h"
#include "service/PlannedClass.h"

namespace soca {

// Changes the edits of the plan, before they are applied to `file`, which has the old text:
//
// - With what an edit deletes at the end of a line, it also deletes the blanks around that.
// - With a method goes the comment on the line above it or after its `end`, if that has no other
//   word than the name of the method.
// - A superclass list over several lines keeps them, less those of the deleted superclasses.
//
// No action gets an edit on a line that another one edits. `definition` and `metaData` are those of
// the planned class.
void tidyEdits(const ClassDefinition& definition, const MetaDataInterface& metaData,
               const SourceFile& file, PlannedClass& planned);

}  // namespace soca
