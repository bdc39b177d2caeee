// From a class name to the loaded class.
#pragma once

#include <memory>

#include "metadata/MetaDataInterface.h"
#include "model/AnalyzedClass.h"
#include "platform/text/UString.h"

namespace soca {

// Made for one call of `load`, and dropped.
struct ClassLoader {
  fl::ustring className;
  // Not owned.
  MetaDataInterface* metaData = nullptr;

  // Never null. Nothing is cached: each call asks the metadata and the code analyzer anew.
  //
  // Raises NotASystemObject for a class that is none or does not exist, and with the path for a
  // file without a class; CodeAnalyzerError for a file that can't be analysed; SyntaxError; and
  // what the look-up of the file raises.
  std::unique_ptr<AnalyzedClass> load() const;
};

}  // namespace soca
