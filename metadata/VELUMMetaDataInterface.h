// Class descriptions from the environment.
#pragma once

#include "metadata/MetaDataInterface.h"

namespace soca {

// Has no state.
class VELUMMetaDataInterface : public MetaDataInterface {
 public:
  std::unique_ptr<MetaClass> getMetaClass(const fl::ustring& className) const override;
};

}  // namespace soca
