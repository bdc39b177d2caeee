#include "reports/text/FileNames.h"

#include <fmt/core.h>

#include <filesystem>

#include "platform/paths/NativePath.h"
#include "reports/text/Escapes.h"

namespace soca {
namespace {

// The letter of the escape for a character that has one; otherwise 0.
char escapeLetter(char character) {
  switch (character) {
    case '\a':
      return 'a';
    case '\b':
      return 'b';
    case '\t':
      return 't';
    case '\n':
      return 'n';
    case '\v':
      return 'v';
    case '\f':
      return 'f';
    case '\r':
      return 'r';
    case '"':
    case '\\':
      return character;
    default:
      return 0;
  }
}

bool isPlain(char character) { return character >= 0x20 && character < 0x7F; }

}  // namespace

FileNames::FileNames(const ClassRoots* roots)
    : roots_(roots), currentFolder_(fl::filesystem::makeAbsoluteLexically({})) {}

std::string FileNames::shown(const std::string& path) const {
  const auto relative = relativeTo(currentFolder_, path);
  return withEscapesInLine(relative && !relative->empty() ? *relative : path);
}

std::string FileNames::typed(const std::string& folder) const {
  if (folder == currentFolder_) return ".";
  const std::string inside = shown(folder);
  if (inside != folder) return inside;
  const bool isAbove = relativeTo(folder, currentFolder_).has_value();
  return isAbove ? std::filesystem::path(folder).lexically_relative(currentFolder_).string()
                 : folder;
}

std::string FileNames::inDiff(const std::string& path) const {
  // git and patch do not follow links to the files of a diff.
  if (const auto file = resolveLinks(path)) {
    if (const auto relative = relativeTo(currentFolder_, *file)) return std::string(*relative);
  }
  if (const auto relative = relativeTo(currentFolder_, path)) return std::string(*relative);
  for (const std::string& root : roots_->all()) {
    if (const auto relative = relativeTo(root, path)) return std::string(*relative);
  }
  return path.substr(path.find_first_not_of('/'));
}

std::string quoteForDiff(std::string_view name) {
  std::string quoted;
  bool needsQuotes = false;
  for (const char character : name) {
    const char letter = escapeLetter(character);
    if (letter != 0) {
      quoted += '\\';
      quoted += letter;
    } else if (isPlain(character)) {
      quoted += character;
      continue;
    } else {
      quoted += fmt::format("\\{:03o}", static_cast<unsigned char>(character));
    }
    needsQuotes = true;
  }
  return needsQuotes ? '"' + quoted + '"' : quoted;
}

}  // namespace soca
