#include "mutants/Copy.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <tuple>

namespace mutants {
namespace {

namespace fs = std::filesystem;

struct Insertion {
  std::size_t at = 0;
  // Orders the insertions at one place: what ends comes before what begins, the inner ends before
  // the outer, and the outer begins before the inner.
  bool begins = false;
  std::ptrdiff_t depth = 0;
  std::string text;
};

std::vector<Insertion> insertionsOf(const std::vector<Mistake>& mistakes) {
  std::vector<std::pair<const Wrapping*, unsigned>> wrappings;
  for (const Mistake& mistake : mistakes) {
    for (const Wrapping& each : mistake.wrappings) wrappings.emplace_back(&each, mistake.number);
  }
  // The outer ones first.
  std::ranges::stable_sort(wrappings, std::ranges::greater(), [](const auto& wrapping) {
    return wrapping.first->span.end - wrapping.first->span.begin;
  });
  std::vector<Insertion> insertions;
  std::ptrdiff_t depth = 0;
  for (const auto& [wrapping, number] : wrappings) {
    const auto& [span, before, middle, after] = *wrapping;
    insertions.push_back(
        {span.begin, true, depth, fmt::format("{}::mutants::isOn({}){}", before, number, middle)});
    insertions.push_back({span.end, false, -depth, after});
    ++depth;
  }
  std::ranges::sort(insertions, {}, [](const Insertion& insertion) {
    return std::tuple(insertion.at, insertion.begins, insertion.depth);
  });
  return insertions;
}

void write(const fs::path& target, const std::string& text, fs::perms permissions) {
  fs::create_directories(target.parent_path());
  if (!fs::exists(target) || readFile(target) != text) {
    if (!(std::ofstream(target, std::ios::binary) << text << std::flush)) {
      throw std::runtime_error("can't write " + target.string());
    }
  }
  fs::permissions(target, permissions);
}

// A test may look at all that is in a folder.
void removeOthers(const fs::path& target, const Project& wanted) {
  std::vector<fs::path> others;
  for (fs::recursive_directory_iterator it(target), end; it != end; ++it) {
    const std::string name = it->path().lexically_relative(target);
    if (name == "build") it.disable_recursion_pending();
    if (!it->is_directory() && !wanted.contains(name)) others.push_back(it->path());
  }
  for (const fs::path& path : others) fs::remove(path);
}

}  // namespace

std::string readFile(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return std::move(text).str();
}

std::string mutate(std::string_view text, const std::vector<Mistake>& mistakes,
                   const std::string& header) {
  std::string result = fmt::format("#include \"{}\"\n#line 1\n", header);
  std::size_t done = 0;
  for (const Insertion& insertion : insertionsOf(mistakes)) {
    result.append(text, done, insertion.at - done).append(insertion.text);
    done = insertion.at;
  }
  return result.append(text, done);
}

Project readProject(const fs::path& root, const std::vector<std::string>& names) {
  Project project;
  for (const std::string& name : names) {
    project[name] = {readFile(root / name), fs::status(root / name).permissions()};
  }
  return project;
}

void writeCopy(const Project& project, const std::vector<Mistake>& mistakes,
               const fs::path& target) {
  std::map<std::string, std::vector<Mistake>> byFile;
  for (const Mistake& mistake : mistakes) byFile[mistake.file].push_back(mistake);
  for (const auto& [name, file] : project) {
    const auto& inFile = byFile[name];
    const bool isMutated = !inFile.empty();
    write(target / name,
          isMutated ? mutate(file.text, inFile, target / "mutants/Switch.h") : file.text,
          file.permissions);
  }
  removeOthers(target, project);
}

}  // namespace mutants
