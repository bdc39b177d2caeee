// The suggestion of other roots, as users read it.
#pragma once

#include <string>
#include <vector>

#include "files/targets/RootSearch.h"
#include "reports/text/FileNames.h"

namespace soca {

// One line without a line end and without a full stop: which superclasses are where, and the
// options with the suggested roots if the current ones are wrong for the whole run.
//
//   3 superclasses that were not found are under 'src', which is no root; did you mean `-p src`?
std::string describeSuggestion(const SuggestedRoots& suggestion, const FileNames& names,
                               bool isWrong);

// "'src', 'tests'": the named folders without those of files.
std::string listFolders(const std::vector<NamedFolder>& named, const FileNames& names);

// That there is no class file in these, or none on a root, with the root that it may be.
std::string describeNoClassFiles(const std::vector<NamedFolder>& named, const FileNames& names);

}  // namespace soca
