#include "reports/formats/SarifLocations.h"

#include <fmt/core.h>

#include <cctype>
#include <cstddef>
#include <nlohmann/json.hpp>

#include "platform/paths/NativePath.h"

namespace soca {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view currentFolderId = "%SRCROOT%";

std::string rootId(std::size_t root) { return fmt::format("ROOT{}", root + 1); }

// The URI of a folder, which ends with a slash.
std::string uriOfFolder(const std::string& path) {
  return fmt::format("file://{}{}", percentEncode(path), path.ends_with('/') ? "" : "/");
}

}  // namespace

SarifLocations::SarifLocations(const ClassRoots* roots)
    : roots_(roots), currentFolder_(fl::filesystem::makeAbsoluteLexically({})) {}

Json SarifLocations::artifactOf(const std::string& path) const {
  if (const auto name = relativeTo(currentFolder_, path)) {
    return {{"uri", percentEncode(*name)}, {"uriBaseId", currentFolderId}};
  }
  for (std::size_t i = 0; i < roots_->all().size(); ++i) {
    const auto name = relativeTo(roots_->all()[i], path);
    if (name) return {{"uri", percentEncode(*name)}, {"uriBaseId", rootId(i)}};
  }
  return {{"uri", "file://" + percentEncode(path)}};
}

Json SarifLocations::baseIds() const {
  Json ids = {{currentFolderId, {{"description", {{"text", "The folder the program ran in."}}}}}};
  for (std::size_t i = 0; i < roots_->all().size(); ++i) {
    const std::string& root = roots_->all()[i];
    if (relativeTo(currentFolder_, root)) continue;
    ids[rootId(i)] = {{"uri", uriOfFolder(root)},
                      {"description", {{"text", "A root of the class path."}}}};
  }
  return ids;
}

Json regionOf(const Extent& extent, bool hasByteOrderMark) {
  const auto columnOf = [&](const SourcePosition& position) {
    return position.column + (hasByteOrderMark && position.line == 0 ? 0 : 1);
  };
  return {{"startLine", extent.start.line + 1},
          {"startColumn", columnOf(extent.start)},
          {"endLine", extent.end.line + 1},
          {"endColumn", columnOf(extent.end)}};
}

Json regionOf(const LinePlace& place, bool hasByteOrderMark) {
  return regionOf(
      Extent{{place.line - 1, place.column - 1}, {place.endLine - 1, place.endColumn - 1}},
      hasByteOrderMark);
}

std::string percentEncode(std::string_view path) {
  constexpr std::string_view plain = "-._~/";
  std::string uri;
  for (const char c : path) {
    const auto unit = static_cast<unsigned char>(c);
    const bool isPlain = unit < 0x80 && (std::isalnum(unit) != 0 || plain.find(c) != plain.npos);
    uri += isPlain ? std::string(1, c) : fmt::format("%{:02X}", unsigned{unit});
  }
  return uri;
}

}  // namespace soca
