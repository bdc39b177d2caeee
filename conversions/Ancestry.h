// The classes that a class derives from.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace soca {

// Asks the class runtime for each class once, nearest first, or for all at once where it remembers
// them. Names are in UTF-8.
class Ancestry {
 public:
  explicit Ancestry(std::string_view className);

  // A class of which nothing is known.
  struct Missing {
    std::string name;
    // The class that names it.
    std::string namedBy;
    bool isPFile = false;
  };

  const std::vector<Missing>& missing() const { return missing_; }
  // Whether the class derives from itself over others.
  bool isCyclic() const { return isCyclic_; }

  // All that the class derives from, nearest first.
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
  bool isCyclic_ = false;
};

}  // namespace soca
