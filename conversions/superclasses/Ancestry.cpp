#include "conversions/superclasses/Ancestry.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "platform/runtime/ClassTable.h"
#include "platform/runtime/LongAncestry.h"

namespace soca {

using sotarn::ClassOriginType;

namespace {

std::string_view reasonOf(sotarn::ReadPartType part) {
  switch (part) {
    case sotarn::ReadPartType::all:
      break;
    case sotarn::ReadPartType::hasSyntaxErrors:
      return "it has syntax errors";
    case sotarn::ReadPartType::isTooDeep:
      return "it is nested too deep";
    case sotarn::ReadPartType::isTooLarge:
      return "it is too large";
  }
  return {};
}

using Description = std::shared_ptr<const sotarn::ClassDescription>;

// Adds the superclasses that the class names and that are not in the list. Returns false if one of
// them could be read only in part.
bool addWholeSuperClasses(const sotarn::ClassDescription& description,
                          std::vector<Description>& classes) {
  return std::ranges::all_of(description.superClasses, [&](const std::string& name) {
    if (sotarn::isEnvironmentClass(name)) return true;
    Description super = sotarn::describeClass(name);
    if (super == nullptr || std::ranges::find(classes, super) != classes.end()) return true;
    const bool isWhole = super->readPart == sotarn::ReadPartType::all;
    classes.push_back(std::move(super));
    return isWhole;
  });
}

// Whether the superclasses of the class are few, and all of them were read to the end.
bool hasWholeSuperClasses(std::string_view className) {
  constexpr std::size_t mostClasses = 32;
  std::vector<Description> classes = {sotarn::describeClass(className)};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const Description current = classes[i];
    if (current == nullptr) continue;
    if (i == mostClasses || !addWholeSuperClasses(*current, classes)) return false;
  }
  return true;
}

}  // namespace

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

bool namesOnlyEnvironment(std::string_view className) {
  const auto description = sotarn::describeClass(className);
  return description != nullptr &&
         std::ranges::all_of(description->superClasses, sotarn::isEnvironmentClass);
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

std::vector<Ancestry::PartlyRead> findPartlyRead(std::string_view className) {
  if (hasWholeSuperClasses(className)) return {};
  return Ancestry(className).partlyRead();
}

std::string describeMissing(const Ancestry::Missing& missing) {
  const auto name =
      fmt::format("the superclass '{}', named by '{}'", missing.name, missing.namedBy);
  return missing.isPFile ? fmt::format("of {}, only a p-file was found", name)
                         : name + ", was not found";
}

std::string describePartlyRead(const Ancestry::PartlyRead& superClass) {
  return fmt::format("the superclass '{}', named by '{}', could be read only in part: {}",
                     superClass.name, superClass.namedBy, reasonOf(superClass.part));
}

}  // namespace soca
