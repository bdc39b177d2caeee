// The places of findings in their file.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "conversions/Finding.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/analyzer/tree/Ast.h"
#include "platform/text/UString.h"

namespace soca {

// The place of a node within one line.
LinePlace placeOfName(const ca::AnalysisResult& analysis, const ca::astapi::Node& name);

class FindingPlaces {
 public:
  // `analysis` must outlive this object.
  explicit FindingPlaces(const ca::AnalysisResult& analysis);

  // Sets the place of each: the declaration of the property or method that is the first argument.
  void addMembers(std::vector<Finding>& findings) const;

  // Adds the other places of each: the companion of a property, its get method, the place of its
  // use, the method of the same name, the first references to a method.
  void addRelated(std::vector<Finding>& findings) const;

 private:
  // The nodes of the names.
  using NodesByName = std::unordered_map<fl::ustring_view, const ca::astapi::Node*>;

  void addName(const NodesByName& nodes, std::string_view name, std::string_view text,
               Finding& finding) const;
  void addUse(Finding& finding) const;
  void addReferences(std::vector<Finding*>& findings) const;

  const ca::AnalysisResult& analysis_;
  NodesByName properties_;
  NodesByName methods_;
};

}  // namespace soca
