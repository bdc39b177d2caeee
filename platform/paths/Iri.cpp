#include "platform/paths/Iri.h"

#include <string>

#include "platform/text/Conversions.h"

namespace foundation::storage::vfs {
namespace {

// Whether the ASCII character needs an escape in the path of an IRI.
bool isReserved(char c) {
  constexpr std::string_view reserved = " \"#%<>?[\\]^`{|}\x7F";
  return (c >= 0 && c < ' ') || reserved.find(c) != std::string_view::npos;
}

std::string escape(std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string escaped;
  for (const char c : path) {
    if (!isReserved(c)) {
      escaped += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    escaped += '%';
    escaped += digits[byte >> 4U];
    escaped += digits[byte & 0xFU];
  }
  return escaped;
}

// Removes and returns the first segment of `rest`; the slash after it is dropped.
fl::ustring_view takeSegment(fl::ustring_view& rest) {
  const std::size_t slash = rest.find(u'/');
  const fl::ustring_view segment = rest.substr(0, slash);
  rest.remove_prefix(slash == fl::ustring_view::npos ? rest.size() : slash + 1);
  return segment;
}

// Removes the last segment of a path that begins with a slash; the root stays.
void removeLastSegment(fl::ustring& path) { path.resize(path.rfind(u'/', path.size() - 2) + 1); }

// Appends `relative` to the folder `path`, which ends in a slash.
void appendSegments(fl::ustring& path, fl::ustring_view relative) {
  while (!relative.empty()) {
    const fl::ustring_view segment = takeSegment(relative);
    if (segment == u"..") {
      if (path.size() > 1) removeLastSegment(path);
    } else if (segment != u"." && !segment.empty()) {
      path += segment;
      if (!relative.empty()) path += u'/';
    }
  }
}

}  // namespace

AbsoluteIRI AbsoluteIRI::fromNativePath(std::string_view path) {
  AbsoluteIRI iri;
  iri.path_ = fl::i18n::to_ustring(escape(path));
  return iri;
}

CanonicalAbsoluteIRI::CanonicalAbsoluteIRI(const AbsoluteIRI& base, const fl::ustring& relative)
    : path_(1, u'/') {
  path_.reserve(base.getPath().size() + relative.size() + 2);
  appendSegments(path_, base.getPath());
  if (path_.back() != u'/') path_ += u'/';
  appendSegments(path_, relative);
}

}  // namespace foundation::storage::vfs
