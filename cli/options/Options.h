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
  // With CommandType::help, the command that help is wanted for; `help` itself for all of them.
  CommandType helpSubject = CommandType::help;
  // As they were given. Without roots the current folder is the only one.
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
  // Whether files may be changed that git could not bring back.
  bool allowDirty = false;
  // Whether a folder stands for what git ignores, hidden folders and links to folders too.
  bool noIgnore = false;
  bool list = false;
  // Whether to tell what the run took.
  bool stats = false;
  FormatType format = FormatType::text;
  bool edits = false;
  // The path of the class whose text comes in on standard input; empty for none.
  std::string stdinPath;
};

// A command line that asks for nothing that the program does, or for something that is not there.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The colours that the arguments ask for, also if there is something wrong with them.
ColorType findColor(const std::vector<std::string>& arguments);

// `arguments` are those behind the program's name. Throws UsageError.
Options parseOptions(const std::vector<std::string>& arguments);

}  // namespace soca::cli
