// Files of before-and-after cases. Their form is described in README.md in this folder.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace soca::testing {

// A named part of a case. Names are `before/<path>`, `after/<path>`, `messages` and so on.
struct Section {
  std::string name;
  std::string text;
};

struct Case {
  // Unique among all cases.
  std::string name;
  // The file that holds the case, and its name there.
  std::filesystem::path path;
  std::string title;
  // In the order of the file.
  std::vector<Section> sections;

  // Null if there is none of that name.
  const Section* find(const std::string& section) const;

  friend std::ostream& operator<<(std::ostream& out, const Case& printed) {
    return out << printed.name;
  }
};

// All cases below the folder, in the order of their names. Throws std::runtime_error for a file
// that is no file of cases.
std::vector<Case> findCases(const std::filesystem::path& root);

// Writes the case back into its file, with its current sections.
void writeCase(const Case& changed);

}  // namespace soca::testing
