#include "platform/runtime/Class.h"

#include <utility>

#include "platform/runtime/Hierarchy.h"

namespace tarn {

ClassObject::ClassObject(std::shared_ptr<const sotarn::ClassDescription> description)
    : description_(std::move(description)),
      hierarchy_(std::make_shared<const sotarn::Hierarchy>(description_)) {}

bool ClassObject::isDerivedFrom(const InternedId& base) const {
  return hierarchy_->contains(base.name);
}

InternedId ClassObject::getID() const { return internal::makeInterned(description_->name); }

COSInterfacePtr COSClass::getClassInterface(const InternedId& id) {
  if (id == internal::nullValue) return {};
  auto description = sotarn::describeClass(id.name);
  if (description == nullptr) return {};
  return COSInterfacePtr(std::make_unique<ClassObject>(std::move(description)));
}

}  // namespace tarn
