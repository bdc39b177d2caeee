// Native paths as strings.
#pragma once

#include <string>
#include <string_view>

#include "platform/text/UString.h"

namespace fl::filesystem {

// `path` under the current folder if it is relative, without `.`, `..`, doubled and trailing
// slashes. Does not access the file system, so links are not followed. An empty path is the current
// folder.
std::string makeAbsoluteLexically(std::string_view path);

namespace detail {

// The native path for the path of an IRI. With `decode`, percent escapes are replaced by their
// characters; an incomplete escape stays.
ustring make_native_form(const ustring& path, bool decode);

// The text after the last point of the last segment; empty for a segment without a point or with
// only a leading one.
ustring extract_extension(const ustring& path);

// The path with `extension`, which has no point, in place of its own extension or appended.
ustring replace_extension(const ustring& path, const ustring& extension);

}  // namespace detail
}  // namespace fl::filesystem
