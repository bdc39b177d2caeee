// What the class runtime knows of one class, gathered from its declaration.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/UString.h"

namespace sotarn {

// A property's constrained set. The codes of `kind`: 0 none, 1 StringSet, 2 StringSetGF,
// 3 MessageCatalogSet, 4 DynamicStringSet, 5 DataTypeSet, 6 RoundingMethodSet.
struct ConstrainedSetInfo {
  std::uint32_t kind = 0;
  // 2 when the set holds strings, 1 when it holds character vectors, 0 without a set.
  std::uint32_t valueType = 0;
  fl::ustring setPropertyName;
  std::vector<fl::ustring> values;
};

// One property as its class declares it. What is absent is not known of this class.
struct PropertyDescription {
  std::optional<bool> isAbstract;
  std::optional<bool> isDependent;
  // Null for none. Few properties have one, so the others keep no room for it.
  std::shared_ptr<const ConstrainedSetInfo> constrainedSet;
};

// Where the knowledge of a class comes from.
enum class ClassOriginType {
  environment,  // the built-in table
  source,       // a class file on the class path
  pFileOnly,    // a p-file on the class path without its source beside it
  classTable,   // only the class table names it
};

// Names are dotted and in UTF-8.
struct ClassDescription {
  std::string name;
  ClassOriginType origin = ClassOriginType::source;
  // The native path of the source file; empty without one.
  std::string sourcePath;
  // As declared, in order, the environment's own classes included.
  std::vector<std::string> superClasses;
  bool strictDefaults = false;
  // The functions that methods blocks define.
  std::vector<std::string> methods;
  std::map<std::string, PropertyDescription, std::less<>> properties;
};

// What is known of the class: the environment's classes first, then the class path, each with what
// a class table says in place of it. Null for a class that nobody knows.
std::shared_ptr<const ClassDescription> describeClass(std::string_view name);

// Whether the name is one of the environment's own classes.
bool isEnvironmentClass(std::string_view name);

}  // namespace sotarn
