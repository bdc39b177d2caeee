// What the manual says of commands and options beyond their line in the help.
#pragma once

#include <span>
#include <string_view>

#include "cli/options/OptionTable.h"

namespace soca::cli {

// Empty if there is no more to say.
std::string_view detailsOf(const CommandRow& row);

// A name and what there is to say of it.
struct ManualEntry {
  std::string_view name;
  std::string_view text;
};

std::span<const std::string_view> description();
std::span<const ManualEntry> environmentVariables();
std::span<const ManualEntry> files();
// Command lines, and what they do.
std::span<const ManualEntry> examples();

}  // namespace soca::cli
