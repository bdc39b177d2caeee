// What every part of a class's model asks.
#pragma once

#include "metadata/MetaClass.h"
#include "platform/analyzer/AnalysisResult.h"

namespace soca {

// Owns neither. Part of the class definition, at which every block, property and method points.
struct ClassContext {
  const ca::AnalysisResult* analysis = nullptr;
  const MetaClass* metaClass = nullptr;
};

}  // namespace soca
