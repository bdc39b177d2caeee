#include "conversions/Ancestry.h"

#include <utility>

#include "platform/runtime/ClassTable.h"
#include "platform/runtime/LongAncestry.h"

namespace soca {

using sotarn::ClassOriginType;

DirectSuperClasses findDirectSuperClasses(std::string_view className) {
  DirectSuperClasses direct;
  const auto description = sotarn::describeClass(className);
  if (description == nullptr) return direct;
  for (const std::string& super : description->superClasses) {
    const auto known = sotarn::describeClass(super);
    if (known == nullptr) {
      direct.missing.push_back(super);
    } else if (known->origin == ClassOriginType::source ||
               known->origin == ClassOriginType::pFileOnly) {
      direct.onPath.push_back(super);
    }
  }
  return direct;
}

Ancestry::Ancestry(std::string_view className) {
  const auto known = sotarn::findLongAncestry(className);
  if (!known) {
    walk(className);
    return;
  }
  isCyclic_ = known->isCyclic;
  for (const auto& [name, namedBy, isPFile] : known->missing) {
    missing_.push_back({std::string(name), std::string(namedBy), isPFile});
  }
  for (const auto& [name, namedBy, part] : known->partlyRead) {
    partlyRead_.push_back({std::string(name), std::string(namedBy), part});
  }
}

std::vector<Ancestry::Missing> Ancestry::unknown() const {
  auto unknown = missing_;
  const auto* table = sotarn::currentClassTable();
  if (table == nullptr) return unknown;
  std::erase_if(unknown, [&](const Missing& missing) {
    const auto entry = table->find(missing.name);
    return missing.isPFile && entry != table->end() && entry->second.superClasses;
  });
  return unknown;
}

void Ancestry::walk(std::string_view className) {
  add(std::string(className), {});
  for (std::size_t i = 0; i < classes_.size(); ++i) look(i);
}

void Ancestry::add(const std::string& name, const std::string& namedBy) {
  if (met_.insert(name).second) {
    classes_.push_back({name, namedBy});
  } else if (name == classes_.front().name) {
    isCyclic_ = true;
  }
}

void Ancestry::look(std::size_t index) {
  const Class current = classes_[index];
  const auto description = sotarn::describeClass(current.name);
  const bool isPFile = description != nullptr && description->origin == ClassOriginType::pFileOnly;
  if (index > 0 && (description == nullptr || isPFile)) {
    missing_.push_back({current.name, current.namedBy, isPFile});
  }
  if (description == nullptr) return;
  if (index > 0 && description->readPart != sotarn::ReadPartType::all) {
    partlyRead_.push_back({current.name, current.namedBy, description->readPart});
  }
  for (const std::string& super : description->superClasses) add(super, current.name);
}

std::vector<std::string> Ancestry::superClassesOf(std::string_view className) {
  Ancestry ancestry;
  ancestry.walk(className);
  std::vector<std::string> names;
  for (std::size_t i = 1; i < ancestry.classes_.size(); ++i) {
    names.push_back(std::move(ancestry.classes_[i].name));
  }
  return names;
}

}  // namespace soca
