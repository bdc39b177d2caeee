#include "reports/outcomes/Hints.h"

#include <fmt/core.h>

#include <cstddef>
#include <utility>

#include "files/targets/NearestFile.h"
#include "files/targets/NearestName.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"

namespace soca {
namespace {

using sotarn::ClassOriginType;

std::string whereLooked(std::string_view className, const ClassRoots& roots) {
  const std::string path = relativePathOfClass(className);
  return fmt::format("looked for {}.vlm and {}.p in {}", path, path, roots.listing());
}

// A class of another package whose name ends with the whole wanted name shows that the root is
// wrong: `src.audio.Mixer` for `audio.Mixer`.
std::string suggestClass(const std::string& meant, std::string_view className,
                         const ClassRoots& roots, WordsType words) {
  const bool isBelow = className.find('.') != std::string_view::npos &&
                       meant.ends_with(fmt::format(".{}", className)) &&
                       roots.all().front() == fl::filesystem::makeAbsoluteLexically({});
  if (!isBelow || words == WordsType::service) return fmt::format("did you mean '{}'?", meant);
  const auto folder = relativePathOfClass(meant.substr(0, meant.size() - className.size() - 1));
  return fmt::format("'{}.vlm' is in the folder '{}'; did you mean `-p {}`?",
                     relativePathOfClass(className), folder, folder);
}

std::vector<std::string> hintsOnUnknownClass(std::string_view className, const ClassRoots& roots,
                                             WordsType words) {
  if (!isClassName(className)) {
    return {fmt::format("'{}' is no class name: names are letters, digits and _, parted by points",
                        className)};
  }
  const std::string where = whereLooked(className, roots);
  std::vector<std::string> hints = {
      words == WordsType::program ? where : "no such class was found; " + where};
  if (stemOfClassFile(className)) {
    hints.push_back(fmt::format("there is no file '{}' in the current folder either", className));
  }
  std::string meant = nearestClass(className, roots);
  if (meant.empty()) meant = nearestPath(className);
  if (!meant.empty()) hints.push_back(suggestClass(meant, className, roots, words));
  return hints;
}

std::vector<std::string> hintsOnAncestry(const Ancestry& ancestry, const ClassRoots& roots,
                                         WordsType words) {
  std::vector<std::string> hints;
  for (const Ancestry::Missing& missing : ancestry.missing()) {
    hints.push_back(describeMissing(missing) +
                    (missing.isPFile
                         ? ", which tells nothing; a class table may say what it derives from"
                         : "; " + whereLooked(missing.name, roots)));
  }
  if (words == WordsType::service) return hints;
  for (const Ancestry::PartlyRead& each : ancestry.partlyRead()) {
    hints.push_back(describePartlyRead(each));
  }
  return hints;
}

}  // namespace

bool isClassName(std::string_view name) {
  while (true) {
    const std::size_t dot = name.find('.');
    if (!isIdentifierName(name.substr(0, dot))) return false;
    if (dot == std::string_view::npos) return true;
    name.remove_prefix(dot + 1);
  }
}

std::string describeNoClass(std::string_view className, const ClassRoots& roots) {
  return fmt::format("there is no class '{}'{}", className,
                     didYouMean(nearestClass(className, roots)));
}

OtherClassHints hintsOnOtherClass(std::string_view className, const ClassRoots& roots,
                                  WordsType words) {
  const auto description = sotarn::describeClass(className);
  if (description == nullptr) return {hintsOnUnknownClass(className, roots, words)};
  if (description->origin == ClassOriginType::pFileOnly) {
    return {
        {"only a p-file was found, without its source beside it; a class table may say what it "
         "derives from"}};
  }
  if (description->origin == ClassOriginType::environment) {
    return {{"the class is one of the environment's own"}};
  }
  if (description->superClasses.empty() && !description->sourcePath.empty()) {
    const FileVerdict verdict = judgeFile(description->sourcePath, words);
    if (verdict.type != FileVerdict::Type::holdsClass) return {{verdict.text}, verdict.type};
  }
  const Ancestry ancestry(className);
  auto hints = hintsOnAncestry(ancestry, roots, words);
  if (ancestry.isCyclic()) hints.emplace_back("the class is among its own superclasses");
  if (!hints.empty()) {
    return {std::move(hints), FileVerdict::Type::holdsClass, ancestry.unknown()};
  }
  if (description->superClasses.empty()) return {{"the class names no superclass"}};
  return {{"none of the classes that it derives from is a System object"}};
}

std::vector<std::string> hintsOnSuperClasses(std::string_view className, const ClassRoots& roots,
                                             WordsType words) {
  return hintsOnAncestry(Ancestry(className), roots, words);
}

std::vector<std::string> hintsOnPFile(const std::string& sourcePath) {
  if (fl::filesystem::stampOf(sourcePath)) {
    return {
        "the p-file stands in front of its source; update the source where there is no p-file, "
        "and make the p-file anew"};
  }
  return {"only a p-file was found, without its source beside it"};
}

}  // namespace soca
