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

// One result for each class, in the order of collection. All classes are loaded, and all rules have
// run, before the first edit is made. Texts are edited in copies; no file is written. Any failure
// ends the call.
std::vector<UpdateResult> applyUpdates(const fl::ustring& className, MetaDataInterface* metaData,
                                       const FactoryList& factories, bool includeSuperclasses);

// The result of `applyUpdates` for one class.
UpdateResult applyClassUpdate(const ClassActions& entry);

// The result of one class without its text: its names and the messages.
UpdateResult makeResult(const ClassActions& entry);

// Finishes the editing of a file and returns its text.
fl::ustring takeText(SourceFile& file);

}  // namespace soca
