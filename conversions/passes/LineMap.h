// The lines of the text as it was read from which the lines of the present text come.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "conversions/Finding.h"
#include "model/SourceFile.h"
#include "platform/text/UString.h"

namespace soca {

// Much cheaper than a PositionMap: columns stay as they are. So it is for clients that show lines.
// For one thread.
class LineMap {
 public:
  // Adds a pass, in the order of the passes: its lines, and the text that they refer to.
  void add(std::shared_ptr<const SourceFile> newLines, std::shared_ptr<const fl::ustring> oldText);

  // An unknown place stays unknown.
  LinePlace toOld(const LinePlace& place) const;

 private:
  struct Pass {
    std::shared_ptr<const fl::ustring> oldText;
    std::shared_ptr<const SourceFile> newLines;
  };

  void read() const;
  void read(const SourceFile& newLines) const;

  // Passes that were not read yet: nothing is asked about most classes.
  mutable std::vector<Pass> pending_;
  // For each line of the present text the first one of the text as it was read; empty before the
  // first pass.
  mutable std::vector<std::uint32_t> oldLines_;
};

}  // namespace soca
