// The conversions that an update makes in a class.
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

// Edits that depend on each other: those of a method, of the superclass list, or of properties
// blocks that are joined or share a property and its companion. The conversions of a file are
// independent: any subset of them may be made.
struct Conversion {
  RuleFamilyType family = RuleFamilyType::attributes;
  // The key of the text in the family, and the arguments for its placeholders.
  std::string_view message;
  std::vector<std::string> arguments;
  // The first member concerned, in UTF-8; empty if there is none.
  std::string member;
  // The name of the member, or the first edit.
  Extent place;
  // Indices of the edits of the file, in order.
  std::vector<std::size_t> edits;
};

// In the order of the file. Every edit belongs to exactly one conversion.
std::vector<Conversion> findConversions(const PlannedClass& planned, const FileEdits& fileEdits);

}  // namespace soca
