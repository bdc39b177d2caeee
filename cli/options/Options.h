// The command line.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "cli/terminal/Console.h"
#include "rules/RuleFamilies.h"
#include "soca/Updater.h"

namespace soca::cli {

enum class CommandType { update, actions, classes, check, explain, undo, help, version };

enum class FormatType { text, json, sarif };

struct Options {
  CommandType command = CommandType::help;
  // With CommandType::help, the command to print help on; `help` itself for the whole program.
  CommandType helpSubject = CommandType::help;
  // In the given form. Without roots the current folder is the only one.
  std::vector<std::string> arguments;
  std::vector<std::string> roots;
  std::string classTable;
  // At least 1.
  unsigned jobs = 1;
  ColorType color = ColorType::automatic;
  bool quiet = false;
  bool verbose = false;
  UpdateMask rules = allFamilies;
  bool includeSuperclasses = false;
  bool write = false;
  bool check = false;
  // Whether files that git could not restore may be changed.
  bool allowDirty = false;
  // Whether a folder includes ignored files, hidden folders and links to folders.
  bool noIgnore = false;
  bool list = false;
  // Whether to print the cost of the run.
  bool stats = false;
  FormatType format = FormatType::text;
  bool edits = false;
  // The path of the class whose text is read from standard input; empty for none.
  std::string stdinPath;
};

// A command line that is not valid, or that names something that does not exist.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The colours that the arguments select, also if the arguments are not valid.
ColorType findColor(const std::vector<std::string>& arguments);

// `arguments` are without the program's name. Throws UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

}  // namespace soca::cli
