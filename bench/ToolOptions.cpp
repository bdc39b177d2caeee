#include "bench/ToolOptions.h"

#include <CLI/CLI.hpp>

namespace bench {
namespace {

void add(const ToolOption& option, bool* value, CLI::App& app) {
  app.add_flag(option.name, *value, option.help);
}

template <class Value>
void add(const ToolOption& option, Value* value, CLI::App& app) {
  app.add_option(option.name, *value, option.help);
}

}  // namespace

std::optional<int> parseToolOptions(const char* purpose, const std::vector<ToolOption>& options,
                                    int argc, char** argv) {
  CLI::App app{purpose};
  for (const ToolOption& option : options) {
    std::visit([&](auto* value) { add(option, value, app); }, option.value);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  return std::nullopt;
}

}  // namespace bench
