#include "cli/commands/Version.h"

#include <git2/version.h>

#include "cli/Revision.h"

namespace soca::cli {

std::string versionText() {
  std::string text = "soca " SOCA_VERSION "\n";
  if (!revision.empty()) text.append("  commit     ").append(revision).append("\n");
  return text + "  compiler   " SOCA_COMPILER
                "\n"
                "  libraries  " SOCA_LIBRARIES ", libgit2 " LIBGIT2_VERSION "\n";
}

}  // namespace soca::cli
