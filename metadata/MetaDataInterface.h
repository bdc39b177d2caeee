// The source of class descriptions.
#pragma once

#include <memory>

#include "metadata/MetaClass.h"
#include "platform/text/UString.h"

namespace soca {

class MetaDataInterface {
 public:
  virtual ~MetaDataInterface() = default;

  // A new description of the class with that dotted name; never null. The description of an unknown
  // class is that of a class that is no System object.
  virtual std::unique_ptr<MetaClass> getMetaClass(const fl::ustring& className) const = 0;

 protected:
  MetaDataInterface() = default;
  MetaDataInterface(const MetaDataInterface&) = default;
  MetaDataInterface& operator=(const MetaDataInterface&) = default;
};

}  // namespace soca
