#include "platform/paths/NativePath.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/text/Conversions.h"

namespace fl::filesystem {
namespace {

std::optional<unsigned> hexValue(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
  return std::nullopt;
}

// The byte of the percent escape at `index`; empty if the escape is incomplete.
std::optional<char> escapedByte(const std::string& path, std::size_t index) {
  if (path[index] != '%' || index + 2 >= path.size()) return std::nullopt;
  const std::optional<unsigned> high = hexValue(path[index + 1]);
  const std::optional<unsigned> low = hexValue(path[index + 2]);
  if (!high || !low) return std::nullopt;
  return static_cast<char>(*high * 16 + *low);
}

// The position of the extension's point; empty for a path without an extension.
std::optional<std::size_t> findPoint(const ustring& path) {
  const std::size_t slash = path.rfind(u'/');
  const std::size_t segment = slash == ustring::npos ? 0 : slash + 1;
  const std::size_t point = path.rfind(u'.');
  if (point == ustring::npos || point <= segment) return std::nullopt;
  return point;
}

// Whether it is the path of something in a folder, and neither `.`, `..` nor a doubled slash may be
// in it.
bool isAbsoluteAndNormal(std::string_view path) {
  return path.size() > 1 && path.front() == '/' && path.back() != '/' &&
         path.find("//") == std::string_view::npos && path.find("/.") == std::string_view::npos;
}

}  // namespace

std::string makeAbsoluteLexically(std::string_view path) {
  if (isAbsoluteAndNormal(path)) return std::string(path);
  std::filesystem::path absolute(path);
  if (absolute.is_relative()) {
    // Without a current folder, because it was deleted, the path stays relative and finds nothing.
    std::error_code error;
    absolute = std::filesystem::current_path(error) / absolute;
  }
  std::string normal = absolute.lexically_normal().string();
  if (normal.size() > 1 && normal.back() == '/') normal.pop_back();
  return normal;
}

namespace detail {

ustring make_native_form(const ustring& path, bool decode) {
  if (!decode || path.find(u'%') == ustring::npos) return path;
  const std::string escaped = i18n::to_string(path);
  std::string bytes;
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    const std::optional<char> byte = escapedByte(escaped, i);
    bytes += byte.value_or(escaped[i]);
    if (byte) i += 2;
  }
  return i18n::to_ustring(bytes);
}

ustring extract_extension(const ustring& path) {
  const std::optional<std::size_t> point = findPoint(path);
  return point ? path.substr(*point + 1) : ustring();
}

ustring replace_extension(const ustring& path, const ustring& extension) {
  return path.substr(0, findPoint(path).value_or(path.size())) + u'.' + extension;
}

}  // namespace detail
}  // namespace fl::filesystem
