// Writes the text of one generated class with a realistic form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "bench/Dice.h"

namespace bench {

enum class FormType {
  current,   // needs no changes
  outdated,  // has one of each kind that can be converted
};

struct ClassShape {
  std::string name;  // without its package
  std::string base;  // with its package; empty for a direct subclass of the environment's base
  FormType form = FormType::current;
  std::uint64_t seed = 0;
  // Methods are added until the text has this many bytes. 5000 gives about 150 lines.
  std::size_t minimumBytes = 0;
};

// The text of a class file, UTF-8.
std::string writeClass(const ClassShape& shape);

}  // namespace bench
