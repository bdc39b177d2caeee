// Writes the ranges of letters as a header, from the Unicode Character Database.
//
//   soca_letter_ranges UnicodeData.txt LetterRanges.h
#include <cstdint>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

// The first fields of one line of the database.
struct Entry {
  std::uint32_t character = 0;
  std::string name;
  std::string category;
};

Entry parseEntry(const std::string& line) {
  std::istringstream fields(line);
  Entry entry;
  std::string character;
  std::getline(fields, character, ';');
  std::getline(fields, entry.name, ';');
  std::getline(fields, entry.category, ';');
  entry.character = static_cast<std::uint32_t>(std::stoul(character, nullptr, 16));
  return entry;
}

bool isLetter(const Entry& entry) {
  return entry.category == "Lu" || entry.category == "Ll" || entry.category == "Lt" ||
         entry.category == "Lm" || entry.category == "Lo";
}

// Adds a letter after all others. A large range has lines for its first and its last character
// only; the name of the last one ends with ", Last>".
void addLetter(const Entry& entry, std::vector<Range>& ranges) {
  const bool endsRange = entry.name.ends_with(", Last>");
  if (!ranges.empty() && (endsRange || ranges.back().last + 1 == entry.character)) {
    ranges.back().last = entry.character;
    return;
  }
  ranges.push_back({entry.character, entry.character});
}

void write(const std::vector<Range>& ranges, std::ostream& out) {
  out << "// Made from UnicodeData.txt.\n#pragma once\n\n#include <array>\n\nnamespace fl {\n\n"
         "struct LetterRange {\n  char32_t first;\n  char32_t last;\n};\n\n"
         "inline constexpr std::array<LetterRange, "
      << ranges.size() << "> letterRanges{{\n"
      << std::hex;
  for (const Range& range : ranges) {
    out << "    {0x" << range.first << ", 0x" << range.last << "},\n";
  }
  out << "}};\n\n}  // namespace fl\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::ifstream database(argv[1]);
  std::vector<Range> ranges;
  for (std::string line; std::getline(database, line);) {
    const Entry entry = parseEntry(line);
    if (isLetter(entry)) addLetter(entry, ranges);
  }
  std::ofstream header(argv[2]);
  write(ranges, header);
  header.close();
  if (ranges.empty() || !header) {
    std::cerr << "no letters in " << argv[1] << ", or " << argv[2] << " can't be written\n";
    return 1;
  }
  return 0;
}
