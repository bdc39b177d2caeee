// Facts about classes that source text can't tell, from a JSON file of the client.
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

// What the table says of one class; what is absent is left to the class's source.
struct ClassTableEntry {
  std::optional<std::vector<std::string>> superClasses;
  std::optional<bool> strictDefaults;
  std::optional<std::vector<std::string>> methods;
  std::map<std::string, PropertyDescription, std::less<>> properties;
};

using ClassTable = std::map<std::string, ClassTableEntry, std::less<>>;

// Text that is no class table; `what` says what is wrong and where.
class ClassTableError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws ClassTableError for text that is no JSON, an unknown key, or a value of a wrong type.
ClassTable parseClassTable(std::string_view json);

// The table that all later answers take into account; to be set before the first call of the
// service. Null for none.
void setClassTable(std::shared_ptr<const ClassTable> table);

// The one that was set, or null. A table lives as long as the process.
const ClassTable* currentClassTable();

}  // namespace sotarn
