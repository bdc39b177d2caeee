#include "mutants/Build.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "mutants/Copy.h"

namespace mutants {
namespace {

namespace fs = std::filesystem;

// A file, relative to the copy, and a line.
using Place = std::pair<std::string, std::size_t>;

// The places that the messages of a compiler name, which ran in `folder`.
std::set<Place> placesIn(const std::string& messages, const fs::path& folder,
                         const fs::path& copy) {
  static const std::regex pattern(R"(^([^:\s]+):(\d+):(?:\d+:)? .*)");
  std::set<Place> places;
  std::istringstream lines(messages);
  std::smatch match;
  for (std::string line; std::getline(lines, line);) {
    if (line.size() > 2000) line.resize(2000);
    if (!std::regex_match(line, match, pattern)) continue;
    const fs::path file = (folder / match[1].str()).lexically_normal();
    places.emplace(file.lexically_relative(copy), std::stoul(match[2].str()));
  }
  return places;
}

template <class Predicate>
std::vector<Mistake> select(const std::vector<Mistake>& mistakes, const Predicate& predicate) {
  std::vector<Mistake> selected;
  std::ranges::copy_if(mistakes, std::back_inserter(selected), predicate);
  return selected;
}

}  // namespace

std::vector<Mistake> buildCopy(const fs::path& copy, const std::vector<Mistake>& mistakes) {
  const fs::path folder = copy / "build/release";
  const std::string log = copy / "build/log";
  fs::create_directories(folder);
  // The options of daily work, so that a cache of the compiler has all files without a mistake.
  const auto command = fmt::format(
      "cd '{}' && {{ [ -e build/release/build.ninja ] || cmake --preset dev; }} >'{}' 2>&1 && "
      "ninja -C build/release -k 0 >'{}' 2>&1",
      copy.string(), log, log);
  if (std::system(command.c_str()) == 0) return {};
  const auto places = placesIn(readFile(log), folder, copy);
  auto failing = select(mistakes, [&](const Mistake& mistake) {
    return std::ranges::any_of(places, [&](const Place& place) {
      return place.first == mistake.file && mistake.line <= place.second &&
             place.second <= mistake.lastLine;
    });
  });
  // A fault may be found where the function ends.
  if (failing.empty()) {
    failing = select(mistakes, [&](const Mistake& mistake) {
      return std::ranges::any_of(places,
                                 [&](const Place& place) { return place.first == mistake.file; });
    });
  }
  if (failing.empty()) throw std::runtime_error("the build fails, see " + log);
  return failing;
}

}  // namespace mutants
