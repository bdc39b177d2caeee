// What an update does to a class, one conversion at a time.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conversions/FileEdits.h"
#include "model/Extent.h"
#include "rules/RuleFamilies.h"
#include "service/UpdatePlan.h"

namespace soca {

// Edits that only make sense together: those of a method, of the list of superclasses, or of blocks
// of properties that share a property and its companion, or are joined. A file with some of its
// conversions made is as good as one with none or all of them.
struct Conversion {
  RuleFamilyType family = RuleFamilyType::attributes;
  // Which of the texts of the family tells it, and what fills the placeholders.
  std::string_view message;
  std::vector<std::string> arguments;
  // The first member that it is about, in UTF-8; empty if it is about none.
  std::string member;
  // Its name, or what is edited first.
  Extent place;
  // Indices of the edits of the file, in order.
  std::vector<std::size_t> edits;
};

// In the order of the file. Every edit belongs to one conversion.
std::vector<Conversion> findConversions(const PlannedClass& planned, const FileEdits& fileEdits);

}  // namespace soca
