// The texts of the manual about commands and options, in addition to their line in the help.
#pragma once

#include <span>
#include <string_view>

#include "cli/options/OptionTable.h"

namespace soca::cli {

// Empty if there is none.
std::string_view detailsOf(const CommandRow& row);

// A name and its description.
struct ManualEntry {
  std::string_view name;
  std::string_view text;
};

std::span<const std::string_view> description();
std::span<const ManualEntry> environmentVariables();
std::span<const ManualEntry> files();
// Command lines and their effects.
std::span<const ManualEntry> examples();

}  // namespace soca::cli
