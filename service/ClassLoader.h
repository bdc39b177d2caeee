// From a class name to the loaded class.
#pragma once

#include <memory>

#include "metadata/MetaDataInterface.h"
#include "model/AnalyzedClass.h"
#include "platform/text/UString.h"

namespace soca {

// Made for one call of `load`.
struct ClassLoader {
  fl::ustring className;
  // Not owned.
  MetaDataInterface* metaData = nullptr;

  // Never null. Not cached: each call queries the metadata and the code analyzer.
  //
  // Raises NotASystemObject for a class that does not exist or is no System object, and with the
  // path for a file without a class; CodeAnalyzerError for a file that cannot be analysed;
  // SyntaxError; and the exceptions of the look-up of the file.
  std::unique_ptr<AnalyzedClass> load() const;
};

}  // namespace soca
