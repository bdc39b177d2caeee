// The context that all parts of a class's model share.
#pragma once

#include "metadata/MetaClass.h"
#include "platform/analyzer/AnalysisResult.h"

namespace soca {

// Owns neither. A member of the class definition; every block, property and method points to it.
struct ClassContext {
  const ca::AnalysisResult* analysis = nullptr;
  const MetaClass* metaClass = nullptr;
};

}  // namespace soca
