#include "cli/update/CommandText.h"

#include <fmt/core.h>

namespace soca::cli {

std::string commandOf(const Options& options) {
  std::string text = "soca update";
  for (const std::string& root : options.roots) text += " -p " + quoteForShell(root);
  if (!options.classTable.empty()) text += " --class-table " + quoteForShell(options.classTable);
  if (options.includeSuperclasses) text += " --superclasses";
  if (options.noLayout) text += " --no-layout";
  if (options.tidy) text += " --tidy";
  if (options.noIgnore) text += " --no-ignore";
  if (options.allowDirty) text += " --allow-dirty";
  return text;
}

std::string argumentsOf(const Options& options) {
  std::string text;
  for (const std::string& argument : options.arguments) {
    text += fmt::format("{}{}", text.empty() ? "" : " ", quoteForShell(argument));
  }
  return text;
}

std::string quoteForShell(const std::string& text) {
  constexpr const char* plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./,:+=@%-";
  if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) return text;
  std::string quoted = "'";
  for (const char character : text) {
    quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
  }
  return quoted + '\'';
}

}  // namespace soca::cli
