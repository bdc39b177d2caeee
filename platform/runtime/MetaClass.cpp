#include "platform/runtime/MetaClass.h"

#include <algorithm>

#include "platform/runtime/Class.h"
#include "platform/runtime/Hierarchy.h"

namespace sotarn {

namespace {

const PropertyDescription* findProperty(const ClassDescription& description,
                                        const std::string& name) {
  const auto found = description.properties.find(name);
  return found == description.properties.end() ? nullptr : &found->second;
}

bool isSystemObject(const std::shared_ptr<const ClassDescription>& description) {
  return anyInHierarchy(description, [](const ClassDescription& ancestor) {
    return ancestor.name == "velum.system.coder.System" ||
           ancestor.name == "velum.system.SystemImpl";
  });
}

}  // namespace

// --- properties ---

bool MetaProperty::isConstrainedSetTarget() const { return getConstrainedSetInfo().kind != 0; }

ConstrainedSetInfo MetaProperty::getConstrainedSetInfo() const {
  const PropertyDescription* property = owner_ != nullptr ? findProperty(*owner_, name_) : nullptr;
  if (property == nullptr || !property->constrainedSet) return {};
  return *property->constrainedSet;
}

bool MetaProperty::isAbstractInAnyClass() const {
  return anyInHierarchy(owner_, [&](const ClassDescription& description) {
    const PropertyDescription* property = findProperty(description, name_);
    return property != nullptr && property->isAbstract.value_or(false);
  });
}

bool MetaProperty::isDependent() const {
  bool isDependent = false;
  anyInHierarchy(owner_, [&](const ClassDescription& description) {
    const PropertyDescription* property = findProperty(description, name_);
    if (property == nullptr || !property->isDependent) return false;
    isDependent = *property->isDependent;
    return true;
  });
  return isDependent;
}

// --- classes ---

MetaClass MetaClass::fromID(const tarn::InternedId& id) {
  MetaClass metaClass;
  metaClass.name_ = id.name;
  metaClass.description_ = describeClass(id.name);
  return metaClass;
}

std::string MetaClass::getName() const { return name_; }

std::vector<MetaClass> MetaClass::getSuperClasses() const {
  std::vector<MetaClass> superClasses;
  if (!isSystemObject(description_)) return superClasses;
  for (const std::string& name : description_->superClasses) {
    if (isEnvironmentClass(name)) continue;
    MetaClass superClass;
    superClass.name_ = name;
    superClass.description_ = describeClass(name);
    superClasses.push_back(std::move(superClass));
  }
  return superClasses;
}

MetaProperty MetaClass::getProperty(const std::string& name) const {
  return MetaProperty(description_, name);
}

bool MetaClass::isStrictDefaultsClass() const {
  return anyInHierarchy(
      description_, [](const ClassDescription& description) { return description.strictDefaults; });
}

bool MetaClass::isMethodDefinedInSuperClass(const std::string& name) const {
  return anyInHierarchy(description_, [&](const ClassDescription& description) {
    if (description.name == name_ || description.origin == ClassOriginType::environment) {
      return false;
    }
    return std::find(description.methods.begin(), description.methods.end(), name) !=
           description.methods.end();
  });
}

}  // namespace sotarn
