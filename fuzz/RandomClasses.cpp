// Makes random classes and checks all properties on each:
//   random_classes [--count N] [--seed S] [--folder N] [--print]
// The same seed gives the same class on every machine. A class on which a property fails is printed
// after its seed, and the exit code is 1. The program runs on folders of N of them. With `--print`
// the classes are printed and not checked.
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <map>
#include <string>

#include "bench/ToolOptions.h"
#include "fuzz/ProgramProperties.h"
#include "fuzz/RandomClass.h"
#include "fuzz/UpdateProperties.h"
#include "fuzz/Violation.h"
#include "fuzz/changes/ChangeProperties.h"
#include "fuzz/conversions/LayoutProperties.h"
#include "platform/text/Conversions.h"

namespace soca::fuzz {
namespace {

std::vector<ClassFile> filesOf(const std::vector<RandomClass>& classes) {
  std::vector<ClassFile> files;
  for (const RandomClass& each : classes) files.push_back(each.file);
  return files;
}

// Checks a generated class: no syntax errors, and the identifiers that were generated.
void checkAsMade(const RandomClass& made) {
  const auto analysis = analyzeChecked(made.file.text);
  require(analysis != nullptr, "class {} is nested too deeply", made.file.className);
  for (const ca::Diagnostic& diagnostic : analysis->diagnostics()) {
    throw Violation(fmt::format("class {} has a syntax error: {}:{}: {}", made.file.className,
                                diagnostic.line + 1, diagnostic.column + 1, diagnostic.message));
  }
  const auto found = identifiersOf(*analysis);
  const auto [expected, other] = std::ranges::mismatch(made.identifiers, found);
  require(expected == made.identifiers.end() && other == found.end(),
          "class {}: identifiers differ at {}", made.file.className,
          expected != made.identifiers.end() ? expected->position : made.file.text.size());
}

class Run {
 public:
  // Returns false if a property failed.
  bool check(std::uint64_t seed) {
    const auto classes = makeRandomClasses(seed);
    try {
      for (const RandomClass& each : classes) {
        checkAsMade(each);
        checkChanges(each.file.text, seed);
        checkLayout(each.file.text);
        codeUnits_ += each.file.text.size();
      }
      count(checkUpdate(filesOf(classes)));
    } catch (const std::exception& error) {
      fmt::print("seed {}: {}\n{}\n", seed, error.what(), writeClassFiles(filesOf(classes)));
      return false;
    }
    return true;
  }

  void printSummary() const {
    for (const auto& [verdict, number] : verdicts_) fmt::print("{:>8}  {}\n", number, verdict);
    fmt::print("{:>8}  UTF-16 code units\n", codeUnits_);
  }

 private:
  void count(const UpdateVerdict& verdict) {
    static constexpr std::string_view names[] = {"unchanged", "updated", "failed", "refused"};
    std::string key(names[static_cast<std::size_t>(verdict.type)]);
    if (!verdict.reason.empty()) key += ": " + verdict.reason;
    key += fmt::format(", {} passes", verdict.passes);
    ++verdicts_[key];
  }

  std::map<std::string, std::size_t> verdicts_;
  std::size_t codeUnits_ = 0;
};

void printClasses(std::uint64_t seed) {
  for (const RandomClass& each : makeRandomClasses(seed)) {
    fmt::print("--- {}\n{}\n", each.file.className, fl::i18n::to_string(each.file.text));
  }
}

struct Options {
  std::uint64_t seed = 1;
  std::uint64_t count = 1000;
  std::uint64_t mostFailures = 1;
  // The number of seeds whose classes are in one folder for the program; 0 for no folder.
  std::uint64_t folder = 200;
  bool isPrinting = false;
};

// Returns false if a property failed.
bool checkFolder(std::uint64_t seed, std::uint64_t count) {
  try {
    checkProgram(seed, count);
  } catch (const std::exception& error) {
    fmt::print("the program on the {} seeds from {} on: {}\n", count, seed, error.what());
    return false;
  }
  return true;
}

int runAll(const Options& options) {
  const auto start = std::chrono::steady_clock::now();
  Run run;
  std::uint64_t failures = 0;
  std::uint64_t done = 0;
  while (done < options.count && failures < options.mostFailures) {
    if (!run.check(options.seed + done++)) ++failures;
    const bool isFolderDone =
        options.folder > 0 && (done % options.folder == 0 || done == options.count);
    if (!isFolderDone) continue;
    const std::uint64_t inFolder = (done - 1) % options.folder + 1;
    if (!checkFolder(options.seed + done - inFolder, inFolder)) ++failures;
  }
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  run.printSummary();
  fmt::print("{} classes with all that they need, {} failures, {:.1f} s\n", done, failures,
             time.count());
  return failures == 0 ? 0 : 1;
}

}  // namespace
}  // namespace soca::fuzz

int main(int argc, char** argv) {
  soca::fuzz::Options options;
  const auto exitCode = bench::parseToolOptions(
      "Checks the properties of updates on random classes",
      {{"--seed", "The first class; the next one has the next number", &options.seed},
       {"--count", "How many classes", &options.count},
       {"--failures", "After how many failures to stop", &options.mostFailures},
       {"--folder", "How many classes the program gets at once, or 0", &options.folder},
       {"--print", "Print the classes and check nothing", &options.isPrinting}},
      argc, argv);
  if (exitCode) return *exitCode;
  if (!options.isPrinting) return soca::fuzz::runAll(options);
  for (std::uint64_t number = 0; number < options.count; ++number) {
    soca::fuzz::printClasses(options.seed + number);
  }
  return 0;
}
