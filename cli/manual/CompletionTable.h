// The table of options in the form that shells need.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/options/OptionTable.h"

namespace soca::cli {

// The kind of completion for a value or an argument. A command may accept several.
enum class CompletionType { nothing, words, wordList, folder, file, classOrFile, className, id };

CompletionType completionOf(const OptionRow& row);
CompletionType completionOf(const CommandRow& row);

std::string joinWords(const OptionRow& row, std::string_view separator);

// The ids that `explain` accepts, rules first, without the part before a colon; ids with a further
// colon are omitted, because shells split words at colons.
std::vector<std::string_view> completedIds();

// The names of the commands that have the option.
std::vector<std::string_view> commandsOf(const OptionRow& row);

}  // namespace soca::cli
