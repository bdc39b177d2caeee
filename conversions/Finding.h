// The findings of an update, for clients that show them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "conversions/parts/LinePlace.h"

namespace soca {

// All texts are UTF-8.

// One message of the service, at the name of the member that it concerns, in the text as it was
// read.
struct Finding : LinePlace {
  // The short id.
  std::string id;
  std::string text;
  // What the program adds to the text, in one clause: what is expected, and what is there. Empty if
  // there is nothing to add, or only lines.
  std::string detail;
  // The same place in the text after the update; unknown if it is not there, or not requested.
  LinePlace newPlace;
  // The arguments for the placeholders of the text.
  std::vector<std::string> arguments;
  // In the order of the file, of very many only the first ones.
  std::vector<RelatedPlace> related;
  // The number of lines of the others.
  std::size_t furtherLines = 0;
};

// The places to determine for a finding: none, that of the member concerned, or also those of the
// members that prevent the conversion.
enum class FindingPlacesType { none, members, related };

}  // namespace soca
