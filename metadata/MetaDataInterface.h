// The source of class descriptions.
#pragma once

#include <memory>

#include "metadata/MetaClass.h"
#include "platform/text/UString.h"

namespace soca {

class MetaDataInterface {
 public:
  virtual ~MetaDataInterface() = default;

  // A new description of the class with that dotted name; never null. An unknown class has one too,
  // which says that it is no System object.
  virtual std::unique_ptr<MetaClass> getMetaClass(const fl::ustring& className) const = 0;

 protected:
  MetaDataInterface() = default;
  MetaDataInterface(const MetaDataInterface&) = default;
  MetaDataInterface& operator=(const MetaDataInterface&) = default;
};

}  // namespace soca
