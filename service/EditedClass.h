// The update of one class, from its actions to its new text. All updates use these functions.
#pragma once

#include <optional>

#include "model/SourceFile.h"
#include "service/ActionCollection.h"
#include "service/PlannedClass.h"
#include "service/ServiceContext.h"

namespace soca {

// The effect of an edit with a missing delimiter.
enum class MissingDelimiterType { endsProcess, stopsUpdate };

// How edits leave the text: as the service does, or tidy (see TidyEdits.h).
enum class EditStyleType { ofService, tidy };

struct EditedClass {
  PlannedClass planned;
  // The lines after the edits; empty if the class has no actions, or if the update stopped.
  std::optional<SourceFile> file;
};

// The plan of the class without applying its actions. `context` is that of their collection.
// Takes all but the class itself out of the entry.
PlannedClass planClass(ClassActions&& entry, const ServiceContext& context);

// The same with all actions applied. Throws the exceptions of ActionApplier.
EditedClass editClass(ClassActions entry, const ServiceContext& context,
                      MissingDelimiterType missingDelimiter);

// The same for a client that decides each conversion: lists the actions that cannot be applied,
// with any of which there are no lines, and ends inserted lines like their neighbours.
EditedClass editClassListingFaults(ClassActions entry, const ServiceContext& context,
                                   EditStyleType style);

}  // namespace soca
