// The lines of the text as it was read from which the lines of the present text come.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "conversions/Finding.h"
#include "conversions/passes/PositionMap.h"
#include "model/SourceFile.h"
#include "platform/text/UString.h"

namespace soca {

// Usually much cheaper than a PositionMap: columns stay as they are, unless parts of two lines are
// joined. So it is for clients that show lines. For one thread.
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
  // For each line of the text after the passes that join none, the one of the text as it was read;
  // empty before the first pass.
  mutable std::vector<std::uint32_t> oldLines_;
  // From the first pass on that joins parts of two lines, where only the columns show which line a
  // place comes from.
  mutable std::vector<PositionMap> joined_;
};

}  // namespace soca
