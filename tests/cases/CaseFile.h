// Before-and-after cases as files. README.md beside this file tells how they are written.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace soca::testing {

// A named piece of a case. Names are `before/<path>`, `after/<path>`, `messages` and so on.
struct Section {
  std::string name;
  std::string text;
};

struct Case {
  // Unique among all cases.
  std::string name;
  // The folder of the case, or the file that it shares with others.
  std::filesystem::path path;
  // The name within such a file; empty for a folder.
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

// Writes the case back with the sections that it has now.
void writeCase(const Case& changed);

}  // namespace soca::testing
