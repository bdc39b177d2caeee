// What an update could not convert, as clients show it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace soca {

// All texts are UTF-8.

// A stretch of one line of the file as it was read. All are one-based, columns count UTF-16 code
// units, and `endColumn` is the one after it. A line of 0 is a place that is not known.
struct LinePlace {
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  std::uint64_t endColumn = 0;
};

// Another place that belongs to a finding.
struct RelatedPlace : LinePlace {
  std::string text;
};

// One message of the service beside its edits, at the name of the member that it is about.
struct Finding : LinePlace {
  // The short id; empty if it is not known.
  std::string id;
  std::string text;
  // What fills the placeholders of the text.
  std::vector<std::string> arguments;
  // In the order of the file.
  std::vector<RelatedPlace> related;
};

// How much is found out about a finding besides its text and id: nothing, the place of the member
// that it is about, or also the places of what prevents the conversion.
enum class FindingPlacesType { none, members, related };

}  // namespace soca
