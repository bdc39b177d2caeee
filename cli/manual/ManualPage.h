// The manual page of the program.
#pragma once

#include <string>

namespace soca::cli {

// The page soca(1) as roff with the macros of man(7). Contains no date, so that the same sources
// give the same page.
std::string manualPage();

}  // namespace soca::cli
