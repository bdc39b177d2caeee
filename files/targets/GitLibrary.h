// The library that reads git repositories, loaded when the first repository is found.
#pragma once

#include <git2.h>

namespace soca {

// The functions of libgit2 that the program uses, by their names in the library.
struct GitLibrary {
  decltype(&::git_libgit2_init) libgit2_init = nullptr;
  decltype(&::git_error_last) error_last = nullptr;
  decltype(&::git_repository_open_ext) repository_open_ext = nullptr;
  decltype(&::git_repository_free) repository_free = nullptr;
  decltype(&::git_repository_workdir) repository_workdir = nullptr;
  decltype(&::git_repository_index) repository_index = nullptr;
  decltype(&::git_repository_hashfile) repository_hashfile = nullptr;
  decltype(&::git_index_free) index_free = nullptr;
  decltype(&::git_index_get_bypath) index_get_bypath = nullptr;
  decltype(&::git_index_find_prefix) index_find_prefix = nullptr;
  decltype(&::git_ignore_path_is_ignored) ignore_path_is_ignored = nullptr;
  decltype(&::git_revparse_single) revparse_single = nullptr;
  decltype(&::git_object_free) object_free = nullptr;
  decltype(&::git_tree_entry_byname) tree_entry_byname = nullptr;
  decltype(&::git_tree_entry_id) tree_entry_id = nullptr;
  decltype(&::git_oid_equal) oid_equal = nullptr;
};

// Loads the library on the first call and keeps it until the process ends; null if libgit2 is not
// installed. Safe to call from several threads.
const GitLibrary* gitLibrary();

}  // namespace soca
