#include "files/targets/FolderListing.h"

#include <filesystem>
#include <system_error>

#include "files/targets/ClassRoots.h"

namespace soca {
namespace {

namespace fs = std::filesystem;

void add(const fs::directory_entry& entry, FolderListing::Names& names) {
  std::error_code ignored;
  const std::string name = entry.path().filename().string();
  if (const auto stem = stemOfClassFile(name); stem && entry.is_regular_file(ignored)) {
    names.classes.emplace(*stem);
  } else if (entry.is_directory(ignored)) {
    names.folders.insert(name);
  }
}

}  // namespace

const FolderListing::Names& FolderListing::namesIn(const std::string& folder) {
  const auto [known, isNew] = known_.try_emplace(folder);
  if (!isNew) return known->second;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    add(*entry, known->second);
  }
  return known->second;
}

bool FolderListing::holdsClass(const std::string& root, std::string_view className) {
  std::string folder = root;
  for (std::size_t dot = className.find('.'); dot != std::string_view::npos;
       dot = className.find('.')) {
    const std::string_view package = className.substr(0, dot);
    if (!namesIn(folder).folders.contains(package)) return false;
    if (folder != "/") folder += '/';
    folder += package;
    className.remove_prefix(dot + 1);
  }
  return namesIn(folder).classes.contains(className);
}

}  // namespace soca
