// The options of programs for developers. The header of the parser takes longer to compile than
// such a program, so only one file includes it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace bench {

struct ToolOption {
  // With its dashes, such as "--seed".
  const char* name;
  const char* help;
  // What the command line sets; a bool is set by the name alone.
  std::variant<bool*, std::uint64_t*, double*, std::string*> value;
};

// Sets the values that the command line gives. Returns the exit code if the program has to end
// then, because the help was printed or the command line is wrong.
std::optional<int> parseToolOptions(const char* purpose, const std::vector<ToolOption>& options,
                                    int argc, char** argv);

}  // namespace bench
