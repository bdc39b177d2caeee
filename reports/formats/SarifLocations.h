// The names of files and places in SARIF.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "files/targets/ClassRoots.h"
#include "model/Extent.h"
#include "reports/outcomes/Outcome.h"

namespace soca {

// Files are named relative to the current folder, whose path is not part of the log, so that the
// same tree gives the same log on every machine; a file outside of it is named relative to its
// root.
class SarifLocations {
 public:
  // `roots` must outlive this object.
  explicit SarifLocations(const ClassRoots* roots);

  // An `artifactLocation`.
  nlohmann::ordered_json artifactOf(const std::string& path) const;
  // The `originalUriBaseIds` to which these refer.
  nlohmann::ordered_json baseIds() const;

 private:
  const ClassRoots* roots_;
  std::string currentFolder_;
};

// A `region`. In a file that begins with a byte order mark, which is not a character in SARIF, the
// columns of the first line are one less than in the text.
nlohmann::ordered_json regionOf(const Extent& extent, bool hasByteOrderMark);
nlohmann::ordered_json regionOf(const LinePlace& place, bool hasByteOrderMark);

// A relative reference in which all reserved and non-ASCII characters are escaped.
std::string percentEncode(std::string_view path);

}  // namespace soca
