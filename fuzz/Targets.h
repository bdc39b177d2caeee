// What the fuzzers call with the bytes that they make up. Each throws if a property fails.
#pragma once

#include <array>
#include <string_view>

namespace soca::fuzz {

// The bytes of a class file to analysis.
void fuzzAnalysis(std::string_view bytes);
// Class files, as `readClassFiles` reads them, to new texts. An entry `table.json` is a class
// table.
void fuzzUpdate(std::string_view bytes);
// A text, and edits of it in the last bytes, to an edited text.
void fuzzEdits(std::string_view bytes);
// A class table in JSON, for a class that has properties with companions.
void fuzzClassTable(std::string_view bytes);

struct Target {
  std::string_view name;
  void (*run)(std::string_view bytes);
};

inline constexpr std::array<Target, 4> targets = {{
    {"analysis", fuzzAnalysis},
    {"update", fuzzUpdate},
    {"edits", fuzzEdits},
    {"class_table", fuzzClassTable},
}};

}  // namespace soca::fuzz
