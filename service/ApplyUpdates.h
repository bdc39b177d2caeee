// From a class name to the updated texts.
#pragma once

#include <vector>

#include "metadata/MetaDataInterface.h"
#include "model/SourceFile.h"
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

// One class's part of the above.
UpdateResult applyClassUpdate(const ClassActions& entry);

// The result of one class but for its text: what it is, and the messages.
UpdateResult makeResult(const ClassActions& entry);

// Ends the editing of a file and takes its text.
fl::ustring takeText(SourceFile& file);

}  // namespace soca
