// From a class name to the updated texts.
#pragma once

#include <optional>
#include <vector>

#include "metadata/MetaDataInterface.h"
#include "model/SourcePosition.h"
#include "platform/text/UString.h"
#include "service/ActionCollection.h"
#include "service/ServiceContext.h"
#include "soca/Updater.h"

namespace soca {

// One result a class, in the order of collecting. All loading and all rules are done with, for all
// the classes, before the first edit is made; texts are edited in copies, and nothing is written.
// Any failure ends the call.
std::vector<UpdateResult> applyUpdates(const fl::ustring& className, MetaDataInterface* metaData,
                                       const FactoryList& factories, bool includeSuperclasses);

// What to do about an edit that would end the process for want of a delimiter.
enum class MissingDelimiterType { endsProcess, endsClass };

// One class's part of the above.
struct ClassUpdate {
  // With a missing delimiter the text before the update.
  UpdateResult result;
  // Where the first edit that could not be made looks for a delimiter.
  std::optional<SourcePosition> missingDelimiter;
};

ClassUpdate applyClassUpdate(const ClassActions& entry, MissingDelimiterType missingDelimiter);

}  // namespace soca
