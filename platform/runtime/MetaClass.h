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
  // Whether the class or one that it derives from declares the property as abstract.
  bool isAbstractInAnyClass() const;
  // Whether the nearest declaration of the property is a dependent one.
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

// A class as it was, with all that it derives from, when it was asked for. A default-constructed
// description belongs to no class and has nothing to tell.
class MetaClass {
 public:
  MetaClass() = default;

  static MetaClass fromID(const tarn::InternedId& id);

  std::string getName() const;
  // The declared superclasses of a System object in their order, less the environment's own
  // classes; empty for any other class. Classes that can't be found are listed.
  std::vector<MetaClass> getSuperClasses() const;
  MetaProperty getProperty(const std::string& name) const;
  // Whether the class or one that it derives from has the class attribute StrictDefaults.
  bool isStrictDefaultsClass() const;
  // Whether a class that this one derives from, other than itself and the environment's, defines
  // the method in a methods block.
  bool isMethodDefinedInSuperClass(const std::string& name) const;

 private:
  explicit MetaClass(const std::string& name);

  // The class and its ancestors; made anew for a superclass, of which few ask for them.
  std::shared_ptr<const Hierarchy> hierarchy() const;

  std::string name_;
  std::shared_ptr<const ClassDescription> description_;
  std::shared_ptr<const Hierarchy> hierarchy_;
};

}  // namespace sotarn
