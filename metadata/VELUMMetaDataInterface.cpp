#include "metadata/VELUMMetaDataInterface.h"

#include "metadata/VELUMMetaClass.h"

namespace soca {

std::unique_ptr<MetaClass> VELUMMetaDataInterface::getMetaClass(
    const fl::ustring& className) const {
  return std::make_unique<VELUMMetaClass>(className);
}

}  // namespace soca
