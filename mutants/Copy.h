// The copy of the project that has the mistakes.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "mutants/Mistake.h"

namespace mutants {

// Empty for a file that can't be read.
std::string readFile(const std::filesystem::path& path);

// The text of a file with mistakes in it. All text that is added is in the line of what it is
// around, so that the compiler's messages have the line numbers of the original.
std::string mutate(std::string_view text, const std::vector<Mistake>& mistakes,
                   const std::string& header);

// The files of a project, by their names relative to its root. All are read once, so that a change
// of them during a run has no effect.
struct ProjectFile {
  std::string text;
  std::filesystem::perms permissions = std::filesystem::perms::none;
};
using Project = std::map<std::string, ProjectFile>;
Project readProject(const std::filesystem::path& root, const std::vector<std::string>& names);

// Makes `target` have the project's files, with the mistakes, and nothing else outside of build/.
// Files that are as they should be are not touched. Throws if something can't be written.
void writeCopy(const Project& project, const std::vector<Mistake>& mistakes,
               const std::filesystem::path& target);

}  // namespace mutants
