// The findings of an update, for clients that show them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace soca {

// All texts are UTF-8.

// A part of the file that was read, usually of one line. All are one-based, columns count UTF-16
// code units, and `endColumn` is the one after it. Line 0 is an unknown place.
struct LinePlace {
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  std::uint64_t endColumn = 0;
  std::uint64_t endLine = 0;
};

// Another place that belongs to a finding.
struct RelatedPlace : LinePlace {
  std::string text;
};

// One message of the service, at the name of the member that it concerns, in the text as it was
// read.
struct Finding : LinePlace {
  // The short id.
  std::string id;
  std::string text;
  // What the program adds to the text, in one clause: what is expected and what is there, or the
  // lines of references. Empty if there is nothing to add.
  std::string detail;
  // The same place in the text after the update; unknown if it is not there, or not requested.
  LinePlace newPlace;
  // The arguments for the placeholders of the text.
  std::vector<std::string> arguments;
  // In the order of the file.
  std::vector<RelatedPlace> related;
};

// The places to determine for a finding: none, that of the member concerned, or also those of the
// members that prevent the conversion.
enum class FindingPlacesType { none, members, related };

}  // namespace soca
