// From a class name to the updated texts.
#pragma once

#include <vector>

#include "platform/text/UString.h"
#include "service/ServiceContext.h"
#include "soca/Updater.h"

namespace soca {

// One result for each class, in the order of collection. All classes are loaded, and all rules have
// run, before the first edit is made. Texts are edited in copies; no file is written. Any failure
// ends the call.
std::vector<UpdateResult> applyUpdates(const fl::ustring& className, const ServiceContext& context,
                                       bool includeSuperclasses);

}  // namespace soca
