// The table of options as shells need it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/options/OptionTable.h"

namespace soca::cli {

// What a value or an argument is completed to. A command may take several.
enum class CompletionType { nothing, words, wordList, folder, file, classOrFile, className, id };

CompletionType completionOf(const OptionRow& row);
CompletionType completionOf(const CommandRow& row);

std::string joinWords(const OptionRow& row, std::string_view separator);

// The ids that `explain` knows, rules first, without what stands in front of a colon; those with
// a colon in the rest are left out, since shells part words at one.
std::vector<std::string_view> completedIds();

// The names of the commands that know the option.
std::vector<std::string_view> commandsOf(const OptionRow& row);

// `text` between single quotes, for every one of the shells.
std::string quoteForShell(std::string_view text);

}  // namespace soca::cli
