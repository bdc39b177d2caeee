// Where on the class path a class has its file.
#pragma once

#include <memory>

#include "platform/paths/Iri.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/UString.h"

// The file of class `a.b.C` under one root of the class path.
struct ClassPathItem {
  foundation::storage::vfs::AbsoluteIRI base;
  // The folder below the base with a slash at its end, `a/b/`; empty for a class in no package.
  fl::ustring folder;
  // The name of the file, `C.vlm` or `C.p`.
  fl::ustring file;
};

// The first root that holds `<root>/a/b/C.p` or `<root>/a/b/C.vlm`, and in it the p-file if both
// are there; null if there is none. A text that lies over a path on this thread counts as a file
// there, and so does a folder of that name. A name whose segments are not all identifiers has no
// item.
std::shared_ptr<ClassPathItem> omGetMatchingClassPathItem(const PathDispatcher& dispatcher,
                                                          const fl::ustring& className);
