// The files of the bundle that the tests use.
#pragma once

#include <ostream>
#include <string>

struct BundleFile {
  const char* name;
  const char* path;

  friend std::ostream& operator<<(std::ostream& out, const BundleFile& file) {
    return out << file.name;
  }
};

inline constexpr BundleFile bundleFiles[] = {SOCA_BUNDLES};
