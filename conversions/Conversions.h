// The conversions of a class, for clients that show them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conversions/FileEdits.h"
#include "conversions/Finding.h"
#include "conversions/risk/Risk.h"
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
  // The name of the member, otherwise the block or the superclass list; in the text as it was read.
  Extent place;
  // Of one that is not made, the same place in the text after the update; unknown if that text is
  // the same.
  LinePlace newPlace;
  ConversionRisk risk;
  // The pass in which it was made, counted from 1; 0 if it is not made.
  unsigned pass = 1;
  // Why it is not made; empty if it is.
  std::optional<ConversionReason> leftOut;
  // The ids of the conversions without which it is not made.
  std::vector<std::string> needs;
  // The edits of the file that make only this conversion; empty if they were not requested or are
  // not known.
  std::vector<FileEdit> edits;

  bool isMade() const { return !leftOut; }
  // The reason that has the lines that were laid apart for it; null if there are none.
  const ConversionReason* findLaidApart() const;
};

// All conversions of the class, in the order of the rules.
std::vector<Conversion> describeConversions(const PlannedClass& planned);

}  // namespace soca
