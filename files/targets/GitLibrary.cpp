#include "files/targets/GitLibrary.h"

#include <dlfcn.h>

#include <array>
#include <optional>

namespace soca {
namespace {

// All versions with the same interface for what is used here; first the one of the headers.
constexpr auto libraryNames = std::to_array<const char*>(
    {"libgit2.so.1.5", "libgit2.so.1.9", "libgit2.so.1.8", "libgit2.so.1.7", "libgit2.so.1.6",
     "libgit2.so.1.4", "libgit2.so.1.3", "libgit2.so.1.1"});

void* openLibrary() {
  for (const char* name : libraryNames) {
    if (void* library = ::dlopen(name, RTLD_NOW | RTLD_LOCAL)) return library;
  }
  return nullptr;
}

template <class Function>
bool find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  return function != nullptr;
}

std::optional<GitLibrary> load() {
  void* library = openLibrary();
  if (library == nullptr) return std::nullopt;
  GitLibrary git;
  const bool hasAll = find(library, "git_libgit2_init", git.libgit2_init) &&
                      find(library, "git_error_last", git.error_last) &&
                      find(library, "git_repository_open_ext", git.repository_open_ext) &&
                      find(library, "git_repository_free", git.repository_free) &&
                      find(library, "git_repository_workdir", git.repository_workdir) &&
                      find(library, "git_repository_index", git.repository_index) &&
                      find(library, "git_repository_hashfile", git.repository_hashfile) &&
                      find(library, "git_index_free", git.index_free) &&
                      find(library, "git_index_get_bypath", git.index_get_bypath) &&
                      find(library, "git_index_find_prefix", git.index_find_prefix) &&
                      find(library, "git_ignore_path_is_ignored", git.ignore_path_is_ignored) &&
                      find(library, "git_revparse_single", git.revparse_single) &&
                      find(library, "git_object_free", git.object_free) &&
                      find(library, "git_tree_entry_byname", git.tree_entry_byname) &&
                      find(library, "git_tree_entry_id", git.tree_entry_id) &&
                      find(library, "git_oid_equal", git.oid_equal);
  if (!hasAll || git.libgit2_init() < 0) return std::nullopt;
  return git;
}

}  // namespace

const GitLibrary* gitLibrary() {
  static const std::optional<GitLibrary> library = load();
  return library ? &*library : nullptr;
}

}  // namespace soca
