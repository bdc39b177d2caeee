// Facts about classes that the source text does not contain, from a JSON file of the client.
//
//   {"classes": {"a.B": {"superclasses": ["..."], "strictDefaults": true, "methods": ["..."],
//                        "properties": {"Mode": {"abstract": true, "dependent": false,
//                                       "constrainedSet": {"kind": 1, "valueType": 1,
//                                                          "setProperty": "ModeSet", "values":
//                                                          ["a"]}}}}}}
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// The facts about one class; an empty field leaves the fact to the class's source.
struct ClassTableEntry {
  std::optional<std::vector<std::string>> superClasses;
  std::optional<bool> strictDefaults;
  std::optional<std::vector<std::string>> methods;
  std::map<std::string, PropertyDescription, std::less<>> properties;
};

using ClassTable = std::map<std::string, ClassTableEntry, std::less<>>;

// A text that is no class table; `what` gives the fault and its place.
class ClassTableError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// In place of superclasses that are not filled in yet: such a list is no fact, and an entry without
// other facts is none.
inline constexpr const char* superClassToFillIn = "?";

// Throws ClassTableError for text that is no JSON, an unknown key, or a value of a wrong type.
ClassTable parseClassTable(std::string_view json);

// Sets the table that all later descriptions use; null for none. To be called before the first call
// of the service.
void setClassTable(std::shared_ptr<const ClassTable> table);

// The table that was set last, or null. A table lives as long as the process.
const ClassTable* currentClassTable();

}  // namespace sotarn
