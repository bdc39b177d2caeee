// The class runtime's knowledge of one class, gathered from its declaration.
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

// One property as its class declares it. An empty field is not known of this class.
struct PropertyDescription {
  std::optional<bool> isAbstract;
  std::optional<bool> isDependent;
  // Null for none. Shared, because few properties have one.
  std::shared_ptr<const ConstrainedSetInfo> constrainedSet;
};

// The source of the description of a class.
enum class ClassOriginType {
  environment,  // the built-in table
  source,       // a class file on the class path
  pFileOnly,    // a p-file on the class path without its source file
  classTable,   // an entry of the class table only
};

// Whether all of a source file was read, or only a part: why not the rest.
enum class ReadPartType { all, hasSyntaxErrors, isTooDeep, isTooLarge };

// Names are dotted and in UTF-8.
struct ClassDescription {
  std::string name;
  ClassOriginType origin = ClassOriginType::source;
  // The native path of the source file; empty without one.
  std::string sourcePath;
  // What was read of the source file.
  ReadPartType readPart = ReadPartType::all;
  // As declared, in order, the environment's own classes included.
  std::vector<std::string> superClasses;
  bool strictDefaults = false;
  // The functions that methods blocks define.
  std::vector<std::string> methods;
  std::map<std::string, PropertyDescription, std::less<>> properties;
};

// The description of the class: an environment class, or a class on the class path, each with the
// values of a class table in place of its own. Null for an unknown class. Throws
// fl::filesystem::ReadError if its file, or whether it has one, cannot be determined: an unreadable
// class is not an unknown one.
std::shared_ptr<const ClassDescription> describeClass(std::string_view name);

// Whether the name is one of the environment's own classes.
bool isEnvironmentClass(std::string_view name);

}  // namespace sotarn
