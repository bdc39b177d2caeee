// Resource identifiers of files.
#pragma once

#include <string_view>

#include "platform/text/UString.h"

namespace foundation::storage::vfs {

// The identifier of a folder. Its path is in IRI form: parted by `/`, non-ASCII characters as they
// are, and percent escapes for the ASCII characters that may not stand in a path, `%` itself among
// them.
class AbsoluteIRI {
 public:
  AbsoluteIRI() = default;

  // `path` is an absolute native path in UTF-8.
  static AbsoluteIRI fromNativePath(std::string_view path);

  const fl::ustring& getPath() const { return path_; }

 private:
  fl::ustring path_;
};

// The identifier that `relative`, in IRI form, stands for in the folder `base`, without `.` and
// `..` segments.
class CanonicalAbsoluteIRI {
 public:
  CanonicalAbsoluteIRI(const AbsoluteIRI& base, const fl::ustring& relative);

  const fl::ustring& getPath() const { return path_; }

 private:
  fl::ustring path_;
};

}  // namespace foundation::storage::vfs
