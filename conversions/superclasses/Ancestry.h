// The superclasses of a class, direct and indirect.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/runtime/ClassDescription.h"

namespace soca {

// What was found of the superclasses that a class itself names, the environment's own aside.
struct DirectSuperClasses {
  std::vector<std::string> missing;
  std::vector<std::string> onPath;
};

DirectSuperClasses findDirectSuperClasses(std::string_view className);

// Whether the class names only classes of the environment: this is often so, and quickly found out.
bool namesOnlyEnvironment(std::string_view className);

// Queries the class runtime once for each class, nearest first, or once for all if it has cached
// them. Names are in UTF-8.
class Ancestry {
 public:
  explicit Ancestry(std::string_view className);

  // A class that was not found, or only as a p-file.
  struct Missing {
    std::string name;
    // The class that has it as a superclass.
    std::string namedBy;
    bool isPFile = false;
  };

  // A class whose file could be read only in part.
  struct PartlyRead {
    std::string name;
    std::string namedBy;
    sotarn::ReadPartType part = sotarn::ReadPartType::all;
  };

  const std::vector<Missing>& missing() const { return missing_; }
  // The same without the p-files whose superclasses are in the class table.
  std::vector<Missing> unknown() const;
  const std::vector<PartlyRead>& partlyRead() const { return partlyRead_; }
  // Whether the class is among its own ancestors.
  bool isCyclic() const { return isCyclic_; }

  // All ancestors of the class, nearest first.
  static std::vector<std::string> superClassesOf(std::string_view className);

 private:
  struct Class {
    std::string name;
    std::string namedBy;
  };

  Ancestry() = default;
  void walk(std::string_view className);
  void add(const std::string& name, const std::string& namedBy);
  void look(std::size_t index);

  std::vector<Class> classes_;
  std::unordered_set<std::string> met_;
  std::vector<Missing> missing_;
  std::vector<PartlyRead> partlyRead_;
  bool isCyclic_ = false;
};

// The superclasses of the class that could be read only in part; usually there are none, which is
// found out without the names of all.
std::vector<Ancestry::PartlyRead> findPartlyRead(std::string_view className);

// "the superclass 'a.B', named by 'c.D', was not found", or the same of a superclass that has only
// a p-file.
std::string describeMissing(const Ancestry::Missing& missing);

// "the superclass 'a.B', named by 'c.D', could be read only in part: it has syntax errors"
std::string describePartlyRead(const Ancestry::PartlyRead& superClass);

}  // namespace soca
