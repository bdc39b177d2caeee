// The facts about a class beyond its own source text.
#pragma once

#include <vector>

#include "platform/runtime/ClassDescription.h"
#include "platform/text/UString.h"

namespace soca {

// The constrained set of a property; `kind` 0 means that it has none.
using ConstrainedSetInfo = sotarn::ConstrainedSetInfo;

// The description of one class. All functions but the first two are only meaningful for a System
// object. Exceptions of the source of the description are passed on.
class MetaClass {
 public:
  virtual ~MetaClass() = default;

  // False also for a class that does not exist.
  virtual bool isSystemObject() const = 0;
  // In the order of the class line.
  virtual std::vector<fl::ustring> getSuperClassNames() const = 0;
  virtual ConstrainedSetInfo getConstrainedSetInfo(const fl::ustring& propertyName) const = 0;
  // The native path of the class's source file, looked up by each call. Raises NoFileForClass, or
  // PFileExists for a class that is found as a p-file.
  virtual fl::ustring getClassFile() const = 0;
  // Whether the property is abstract in the class or in one of its ancestors.
  virtual bool isAbstractInAnyClass(const fl::ustring& propertyName) const = 0;
  virtual bool isDependent(const fl::ustring& propertyName) const = 0;
  virtual bool isStrictDefaultsClass() const = 0;
  virtual bool isMethodDefinedInSuperClass(const fl::ustring& methodName) const = 0;

 protected:
  MetaClass() = default;
  MetaClass(const MetaClass&) = default;
  MetaClass& operator=(const MetaClass&) = default;
};

}  // namespace soca
