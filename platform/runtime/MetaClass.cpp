#include "platform/runtime/MetaClass.h"

#include <algorithm>

#include "platform/runtime/Hierarchy.h"

namespace sotarn {

namespace {

const PropertyDescription* findProperty(const ClassDescription& description,
                                        const std::string& name) {
  const auto found = description.properties.find(name);
  return found == description.properties.end() ? nullptr : &found->second;
}

bool reachesSystemBase(const Hierarchy& hierarchy) {
  return hierarchy.contains(coderSystemName) || hierarchy.contains(systemImplName);
}

}  // namespace

// --- properties ---

const ConstrainedSetInfo* MetaProperty::constrainedSet() const {
  const PropertyDescription* property = owner_ != nullptr ? findProperty(*owner_, name_) : nullptr;
  return property != nullptr ? property->constrainedSet.get() : nullptr;
}

bool MetaProperty::isConstrainedSetTarget() const {
  const ConstrainedSetInfo* set = constrainedSet();
  return set != nullptr && set->kind != 0;
}

ConstrainedSetInfo MetaProperty::getConstrainedSetInfo() const {
  const ConstrainedSetInfo* set = constrainedSet();
  return set != nullptr ? *set : ConstrainedSetInfo();
}

bool MetaProperty::isAbstractInAnyClass() const {
  const auto saysAbstract = [&](const ClassDescription& description) {
    const PropertyDescription* property = findProperty(description, name_);
    return property != nullptr && property->isAbstract.value_or(false);
  };
  return hierarchy_->mayDeclareAbstract() && hierarchy_->find(saysAbstract) != nullptr;
}

bool MetaProperty::isDependent() const {
  const auto declaresIt = [&](const ClassDescription& description) {
    const PropertyDescription* property = findProperty(description, name_);
    return property != nullptr && property->isDependent;
  };
  const auto nearest = hierarchy_->find(declaresIt);
  return nearest != nullptr && *findProperty(*nearest, name_)->isDependent;
}

// --- classes ---

MetaClass::MetaClass(const std::string& name) : name_(name), description_(describeClass(name)) {}

MetaClass MetaClass::fromID(const tarn::InternedId& id) {
  MetaClass metaClass(id.name);
  metaClass.hierarchy_ = metaClass.hierarchy();
  return metaClass;
}

std::shared_ptr<const Hierarchy> MetaClass::hierarchy() const {
  return hierarchy_ != nullptr ? hierarchy_ : std::make_shared<const Hierarchy>(description_);
}

std::string MetaClass::getName() const { return name_; }

std::vector<MetaClass> MetaClass::getSuperClasses() const {
  std::vector<MetaClass> superClasses;
  if (!reachesSystemBase(*hierarchy())) return superClasses;
  for (const std::string& name : description_->superClasses) {
    if (!isEnvironmentClass(name)) superClasses.push_back(MetaClass(name));
  }
  return superClasses;
}

MetaProperty MetaClass::getProperty(const std::string& name) const {
  return MetaProperty(description_, hierarchy(), name);
}

bool MetaClass::isStrictDefaultsClass() const { return hierarchy()->hasStrictDefaults(); }

bool MetaClass::isMethodDefinedInSuperClass(const std::string& name) const {
  const auto definesIt = [&](const ClassDescription& description) {
    if (description.name == name_ || description.origin == ClassOriginType::environment) {
      return false;
    }
    return std::find(description.methods.begin(), description.methods.end(), name) !=
           description.methods.end();
  };
  return hierarchy()->find(definesIt) != nullptr;
}

}  // namespace sotarn
