// Writes the pages of docs/rules/, or with --check prints which of them are out of date.
//
//   soca_rule_pages [--check] FOLDER
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "reports/explanations/RulePages.h"

namespace {

namespace fs = std::filesystem;
using soca::RulePage;

// The file's text; empty if there is no such file.
std::string readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void writePages(const fs::path& folder) {
  fs::create_directories(folder);
  for (const RulePage& page : soca::makeRulePages()) {
    std::ofstream out(folder / page.fileName, std::ios::binary);
    out << page.text;
    out.close();
    if (!out) throw std::runtime_error((folder / page.fileName).string() + " can't be written");
  }
}

// Whether the folder holds the pages and nothing else.
bool checkPages(const fs::path& folder) {
  const auto pages = soca::makeRulePages();
  bool isCurrent = true;
  for (const RulePage& page : pages) {
    if (readFile(folder / page.fileName) == page.text) continue;
    std::cerr << (folder / page.fileName).string()
              << " is not what resources/messages.json gives; './dev docs' writes it anew\n";
    isCurrent = false;
  }
  if (!fs::is_directory(folder)) return isCurrent;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (std::ranges::find(pages, name, &RulePage::fileName) != pages.end()) continue;
    std::cerr << entry.path().string() << " is none of the pages; delete it\n";
    isCurrent = false;
  }
  return isCurrent;
}

}  // namespace

int main(int argc, char** argv) {
  const bool checks = argc == 3 && std::string_view(argv[1]) == "--check";
  if (argc != 2 && !checks) return 2;
  try {
    if (checks) return checkPages(argv[2]) ? 0 : 1;
    writePages(argv[1]);
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << "\n";
    return 1;
  }
  return 0;
}
