// Text for the command line of a shell.
#pragma once

#include <string>
#include <string_view>

namespace fl {

// The text in single quotes, as bash, zsh and fish take it.
std::string quoteForShell(std::string_view text);

// The text as one word: in quotes only if it has characters that shells do not take as they are.
std::string makeShellWord(std::string_view text);

}  // namespace fl
