// Puts small mistakes into a copy of the project, one at a time, and lists those that no test sees.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "mutants/Build.h"
#include "mutants/Choice.h"
#include "mutants/Copy.h"
#include "mutants/Finder.h"
#include "mutants/Tests.h"

namespace mutants {
namespace {

namespace fs = std::filesystem;

struct Options {
  fs::path root;
  // For the copy, and for results that the next run uses.
  fs::path work;
  // A file with the names of the project's files, each ended by NUL.
  fs::path list;
  std::vector<std::string> folders;
  std::size_t count = 200;
  unsigned seed = 1;
  double longest = 20;
};

std::vector<std::string> readList(const fs::path& list) {
  std::vector<std::string> files;
  std::istringstream names(readFile(list));
  for (std::string name; std::getline(names, name, '\0');) files.push_back(name);
  return files;
}

bool isMutated(const std::string& file, const Options& options) {
  return file.ends_with(".cpp") &&
         std::ranges::any_of(options.folders, [&](const std::string& folder) {
           return file.starts_with((fs::path(folder) / "").lexically_normal().string());
         });
}

// A number for each line, and the rest of the line; kept in a file for the next run.
class Notes {
 public:
  explicit Notes(const fs::path& file) {
    std::ifstream lines(file);
    unsigned number = 0;
    for (std::string text; lines >> number >> std::ws && std::getline(lines, text);) {
      texts_[number] = text;
    }
    lines.close();
    file_.open(file, std::ios::app);
  }

  void add(unsigned number, const std::string& text) {
    texts_[number] = text;
    file_ << number << ' ' << text << std::endl;
  }

  std::string find(unsigned number) const {
    const auto found = texts_.find(number);
    return found == texts_.end() ? "" : found->second;
  }

  std::set<unsigned> numbers() const {
    std::set<unsigned> numbers;
    for (const auto& [number, text] : texts_) numbers.insert(number);
    return numbers;
  }

 private:
  std::map<unsigned, std::string> texts_;
  std::ofstream file_;
};

std::string describe(const Mistake& mistake) {
  return fmt::format("{}:{}: {}: {}  ->  {}", mistake.file, mistake.line, nameOf(mistake.kind),
                     mistake.original, mistake.replacement);
}

// Makes and builds the copy. Mistakes that do not compile are replaced by others until all do.
std::vector<Mistake> build(const Options& options, const fs::path& copy) {
  const Project project = readProject(options.root, readList(options.list));
  std::vector<Mistake> mistakes;
  for (const auto& [name, file] : project) {
    if (isMutated(name, options)) {
      std::ranges::move(findMistakes(name, file.text), std::back_inserter(mistakes));
    }
  }
  Notes useless(options.work / "useless");
  while (true) {
    auto chosen = choose(mistakes, useless.numbers(), options.count, options.seed);
    fmt::print(stderr, "mutants: building {} of {} possible mistakes\n", chosen.size(),
               mistakes.size());
    writeCopy(project, chosen, copy);
    const auto failing = buildCopy(copy, chosen);
    if (failing.empty()) return chosen;
    for (const Mistake& mistake : failing) useless.add(mistake.number, "does not compile");
  }
}

// The mistakes that no test sees.
std::vector<Mistake> tryMistakes(const Options& options, const std::vector<Mistake>& mistakes,
                                 const TestRunner& runner) {
  fmt::print(stderr, "mutants: running all tests without a mistake\n");
  const auto tests = runner.explore(options.longest);
  Notes seen(options.work / "seen");
  std::vector<Mistake> unseen;
  std::size_t done = 0;
  for (const Mistake& mistake : mistakes) {
    const std::string likely = seen.find(mistake.number);
    const std::string test = runner.findFailing(tests, mistake, likely);
    if (test.empty()) unseen.push_back(mistake);
    if (!test.empty() && test != likely) seen.add(mistake.number, test);
    fmt::print(stderr, "mutants: {} of {}: {}\n  {}\n", ++done, mistakes.size(), describe(mistake),
               test.empty() ? "unseen" : "seen by " + test);
  }
  return unseen;
}

void report(const std::vector<Mistake>& mistakes, const std::vector<Mistake>& unseen) {
  std::map<std::string, std::pair<std::size_t, std::size_t>> folders;
  for (const Mistake& each : mistakes) ++folders[fs::path(each.file).parent_path()].first;
  for (const Mistake& each : unseen) {
    ++folders[fs::path(each.file).parent_path()].second;
    fmt::print("{}\n", describe(each));
  }
  fmt::print("\n");
  for (const auto& [folder, counts] : folders) {
    fmt::print("{:28} {:4} mistakes, {:3} unseen\n", folder, counts.first, counts.second);
  }
  fmt::print("{:28} {:4} mistakes, {:3} unseen\n", "all", mistakes.size(), unseen.size());
}

void run(const Options& options) {
  fs::create_directories(options.work);
  const fs::path copy = options.work / "copy";
  const auto mistakes = build(options, copy);
  const fs::path scratch = options.work / "scratch";
  fs::create_directories(scratch);
  report(mistakes, tryMistakes(options, mistakes, TestRunner(copy / "build/release", scratch)));
}

}  // namespace
}  // namespace mutants

int main(int argc, char** argv) try {
  mutants::Options options;
  CLI::App app{"Lists the small mistakes in the code that no test sees", "./dev mutants"};
  app.add_option("--root", options.root, "The project")->required()->group("");
  app.add_option("--work", options.work, "For all that is made")->required()->group("");
  app.add_option("--files", options.list, "The project's files")->required()->group("");
  app.add_option("--count", options.count, "How many mistakes are made (200)");
  app.add_option("--seed", options.seed, "Chooses other mistakes (1)");
  app.add_option("--longest", options.longest,
                 "Leaves out tests that take more seconds than this without a mistake (20)");
  app.add_option("folders", options.folders, "Where mistakes are made")->required();
  CLI11_PARSE(app, argc, argv);
  mutants::run(options);
  return 0;
} catch (const std::exception& error) {
  fmt::print(stderr, "mutants: {}\n", error.what());
  return 1;
}
