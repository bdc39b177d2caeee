// The place of a class's file on the class path.
#pragma once

#include <memory>

#include "platform/paths/Iri.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/UString.h"

// The file of class `a.b.C` under one root of the class path.
struct ClassPathItem {
  foundation::storage::vfs::AbsoluteIRI base;
  // The folder below the base with a trailing slash, `a/b/`; empty for a class in no package.
  fl::ustring folder;
  // The name of the file, `C.vlm` or `C.p`.
  fl::ustring file;
};

// The item under the first root that has `<root>/a/b/C.p` or `<root>/a/b/C.vlm`, with the p-file if
// it has both; null if there is none. An overlay text of this thread counts as a file, and so does
// a folder of that name. A name with a segment that is no identifier has no item. Throws ReadError
// if it cannot be determined whether there is a file.
std::shared_ptr<ClassPathItem> omGetMatchingClassPathItem(const PathDispatcher& dispatcher,
                                                          const fl::ustring& className);
