// The class runtime's class objects: existence and derivation.
#pragma once

#include <memory>

#include "platform/runtime/ClassDescription.h"
#include "platform/runtime/InternedId.h"

namespace sotarn {
class Hierarchy;
}

namespace tarn {

// A class that exists.
class ClassObject {
 public:
  explicit ClassObject(std::shared_ptr<const sotarn::ClassDescription> description);
  virtual ~ClassObject() = default;
  ClassObject(const ClassObject&) = delete;
  ClassObject& operator=(const ClassObject&) = delete;

  // Whether the class has that name or reaches it by declared superclasses, which may form a cycle.
  virtual bool isDerivedFrom(const InternedId& base) const;
  virtual InternedId getID() const;

 private:
  std::shared_ptr<const sotarn::ClassDescription> description_;
  std::shared_ptr<const sotarn::Hierarchy> hierarchy_;
};

// Holds a class object; empty for a class that does not exist.
class COSInterfacePtr {
 public:
  COSInterfacePtr() = default;
  explicit COSInterfacePtr(std::unique_ptr<ClassObject> object) : object_(std::move(object)) {}

 private:
  friend class COSClassPtrHelper;
  std::unique_ptr<ClassObject> object_;
};

class COSClass {
 public:
  static COSInterfacePtr getClassInterface(const InternedId& id);
};

class COSClassPtrHelper {
 public:
  // The class object, owned by `pointer`; null if the class does not exist.
  static const ClassObject* getObject(const COSInterfacePtr& pointer) {
    return pointer.object_.get();
  }
};

}  // namespace tarn
