// Resource identifiers of files.
#pragma once

#include <string_view>

#include "platform/text/UString.h"

namespace foundation::storage::vfs {

// The identifier of a folder. Its path is in IRI form: segments are separated by `/`, non-ASCII
// characters are unescaped, and the ASCII characters that are reserved in a path, including `%`,
// are percent escapes.
class AbsoluteIRI {
 public:
  AbsoluteIRI() = default;

  // `path` is an absolute native path in UTF-8.
  static AbsoluteIRI fromNativePath(std::string_view path);

  const fl::ustring& getPath() const { return path_; }

 private:
  fl::ustring path_;
};

// The identifier of the relative path `relative`, in IRI form, in the folder `base`, without `.`
// and `..` segments.
class CanonicalAbsoluteIRI {
 public:
  CanonicalAbsoluteIRI(const AbsoluteIRI& base, const fl::ustring& relative);

  const fl::ustring& getPath() const { return path_; }

 private:
  fl::ustring path_;
};

}  // namespace foundation::storage::vfs
