// How files and places are named in SARIF.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "files/targets/ClassRoots.h"
#include "model/Extent.h"
#include "reports/outcomes/Outcome.h"

namespace soca {

// Files are named relative to the current folder, which is not named itself, so that the same tree
// gives the same log on every machine; only a file outside of it is named relative to its root.
class SarifLocations {
 public:
  // `roots` must outlive this object.
  explicit SarifLocations(const ClassRoots* roots);

  // An `artifactLocation`.
  nlohmann::ordered_json artifactOf(const std::string& path) const;
  // The `originalUriBaseIds` that these refer to.
  nlohmann::ordered_json baseIds() const;

 private:
  const ClassRoots* roots_;
  std::string currentFolder_;
};

// A `region`. In a file that begins with a byte order mark, which counts as no character here, the
// columns of the first line are one less than in the text.
nlohmann::ordered_json regionOf(const Extent& extent, bool hasByteOrderMark);
nlohmann::ordered_json regionOf(const LinePlace& place, bool hasByteOrderMark);

// A relative reference in which every character that has a meaning or is not ASCII is escaped.
std::string percentEncode(std::string_view path);

}  // namespace soca
