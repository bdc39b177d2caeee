// The conversions that an update makes in a class, for clients that show them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "conversions/FileEdits.h"
#include "model/Extent.h"
#include "rules/RuleFamilies.h"
#include "service/PlannedClass.h"

namespace soca {

// All texts are UTF-8.
struct Conversion {
  ConversionKindType kind = ConversionKindType::mixins;
  // Unique among all conversions: `audio.Mixer#attributes/logical:Gain`.
  std::string id;
  // The key of the text in the family, and the arguments for its placeholders.
  std::string_view message;
  std::vector<std::string> arguments;
  // The member that names it; empty if there is none.
  std::string member;
  // The name of the member, otherwise the block or the superclass list.
  Extent place;
  // The edits of the file that make only this conversion; empty if they were not requested or are
  // not known.
  std::vector<FileEdit> edits;
};

// All conversions of the class, in the order of the rules.
std::vector<Conversion> describeConversions(const PlannedClass& planned);

}  // namespace soca
