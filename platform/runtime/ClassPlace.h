// What the class path has of a class.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sotarn {

// The files of a class under the first root that has any.
struct ClassPlace {
  // The native path of the source file, or of an overlay text; empty without one.
  std::string source;
  // Whether there is a p-file, which comes before the source file.
  bool hasPFile = false;

  friend bool operator==(const ClassPlace&, const ClassPlace&) = default;
};

// Empty for a class that is not on the class path. Throws fl::filesystem::ReadError if that cannot
// be determined.
std::optional<ClassPlace> findClassPlace(std::string_view name);

}  // namespace sotarn
