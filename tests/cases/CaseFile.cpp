#include "tests/cases/CaseFile.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

const std::string titleMark = "=== ";
const std::string sectionMark = "--- ";
const std::string noLineEnd = "\\\n";
// The file of `before` and `after` without a path.
const std::string defaultFile = "/C.vlm";

std::string readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

struct CaseText {
  // The text before the first case.
  std::string introduction;
  std::vector<Case> cases;
};

std::string longName(const std::string& section) {
  return section == "before" || section == "after" ? section + defaultFile : section;
}

std::string shortName(const std::string& section) {
  const bool isDefault =
      section.ends_with(defaultFile) && longName(section.substr(0, section.find('/'))) == section;
  return isDefault ? section.substr(0, section.find('/')) : section;
}

// Removes what the form of the file adds: the blank line before the next case, and the mark of a
// text without a line end.
void finishSection(std::string& text, bool isLastOfCase) {
  if (isLastOfCase && (text == "\n" || text.ends_with("\n\n"))) text.pop_back();
  if (text == noLineEnd || text.ends_with("\n" + noLineEnd)) {
    text.resize(text.size() - std::min(text.size(), noLineEnd.size() + 1));
  }
}

CaseText parseCases(const fs::path& path) {
  std::istringstream in(readFile(path));
  CaseText result;
  std::string* open = &result.introduction;
  const auto closeSection = [&](bool isLastOfCase) {
    if (!result.cases.empty() && !result.cases.back().sections.empty()) {
      finishSection(*open, isLastOfCase);
    }
  };
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with(titleMark)) {
      closeSection(true);
      result.cases.push_back({"", path, line.substr(titleMark.size()), {}});
      open = nullptr;
    } else if (line.starts_with(sectionMark) && !result.cases.empty()) {
      closeSection(false);
      auto& sections = result.cases.back().sections;
      open = &sections.emplace_back(Section{longName(line.substr(sectionMark.size())), ""}).text;
    } else if (open != nullptr) {
      *open += line + '\n';
    } else if (!line.empty()) {
      throw std::runtime_error(path.string() + ": text before a section: " + line);
    }
  }
  closeSection(false);
  return result;
}

std::string formatCases(const CaseText& cases) {
  std::string text = cases.introduction;
  for (const Case& entry : cases.cases) {
    if (&entry != &cases.cases.front()) text += '\n';
    text += titleMark + entry.title + '\n';
    for (const Section& section : entry.sections) {
      text += sectionMark + shortName(section.name) + '\n' + section.text;
      if (!section.text.empty() && !section.text.ends_with('\n')) text += '\n' + noLineEnd;
    }
  }
  return text;
}

// The path below the root and the title, as letters and digits.
std::string testName(fs::path relative, const std::string& title) {
  std::string name = relative.replace_extension().generic_string() + "_" + title;
  std::ranges::replace_if(name, [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

void addCases(std::vector<Case> found, const fs::path& root, std::map<std::string, Case>& all) {
  for (Case& entry : found) {
    entry.name = testName(entry.path.lexically_relative(root.parent_path()), entry.title);
    if (!all.emplace(entry.name, entry).second) {
      throw std::runtime_error(entry.path.string() + ": two cases of the name " + entry.name);
    }
  }
}

}  // namespace

const Section* Case::find(const std::string& section) const {
  const auto found = std::ranges::find(sections, section, &Section::name);
  return found != sections.end() ? &*found : nullptr;
}

std::vector<Case> findCases(const fs::path& root) {
  std::map<std::string, Case> all;
  if (fs::exists(root)) {
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      if (entry.path().extension() == ".cases") addCases(parseCases(entry.path()).cases, root, all);
    }
  }
  std::vector<Case> cases;
  for (auto& [name, entry] : all) cases.push_back(std::move(entry));
  return cases;
}

void writeCase(const Case& changed) {
  CaseText text = parseCases(changed.path);
  std::ranges::find(text.cases, changed.title, &Case::title)->sections = changed.sections;
  std::ofstream(changed.path, std::ios::binary) << formatCases(text);
}

}  // namespace soca::testing
