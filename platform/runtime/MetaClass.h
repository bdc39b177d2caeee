// The class runtime's descriptions of System object classes and of their properties.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/runtime/ClassDescription.h"
#include "platform/runtime/InternedId.h"

namespace sotarn {

class Hierarchy;

class MetaProperty {
 public:
  // Whether the file of the class declares a companion that holds the property's set.
  bool isConstrainedSetTarget() const;
  // The empty record for a property that is no target.
  ConstrainedSetInfo getConstrainedSetInfo() const;
  // Whether the class or one of its ancestors declares the property as abstract.
  bool isAbstractInAnyClass() const;
  // Whether the nearest declaration of the property is dependent.
  bool isDependent() const;

 private:
  friend class MetaClass;
  MetaProperty(std::shared_ptr<const ClassDescription> owner,
               std::shared_ptr<const Hierarchy> hierarchy, std::string name)
      : owner_(std::move(owner)), hierarchy_(std::move(hierarchy)), name_(std::move(name)) {}

  // Null for a property that is no target.
  const ConstrainedSetInfo* constrainedSet() const;

  std::shared_ptr<const ClassDescription> owner_;
  std::shared_ptr<const Hierarchy> hierarchy_;
  std::string name_;
};

// A class with its ancestors, in their state when it was made. A default-constructed object belongs
// to no class and is empty.
class MetaClass {
 public:
  MetaClass() = default;

  static MetaClass fromID(const tarn::InternedId& id);

  std::string getName() const;
  // The declared superclasses of a System object in their order, without the environment's own
  // classes; empty for any other class. Includes classes that are not found.
  std::vector<MetaClass> getSuperClasses() const;
  MetaProperty getProperty(const std::string& name) const;
  // Whether the class or one of its ancestors has the class attribute StrictDefaults.
  bool isStrictDefaultsClass() const;
  // Whether an ancestor, other than the class itself and the environment's classes, defines the
  // method in a methods block.
  bool isMethodDefinedInSuperClass(const std::string& name) const;

 private:
  explicit MetaClass(const std::string& name);

  // The class and its ancestors. Made on each call for a superclass, because it is rarely needed.
  std::shared_ptr<const Hierarchy> hierarchy() const;

  std::string name_;
  std::shared_ptr<const ClassDescription> description_;
  std::shared_ptr<const Hierarchy> hierarchy_;
};

}  // namespace sotarn
