// Writes trees of generated class files, the same ones for the same seed:
//   generate_classes --seed 1 --count 2000 --out DIR     a tree of classes, half of them outdated
//   generate_classes --seed 1 --bytes 10000000 --out DIR one class of that size, DIR/Large.vlm
//   generate_classes --members method --count 1000 --out DIR
//                                                        one class with that many members of a kind
// and JavaScript classes of the same form with --language javascript.
#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>

#include "bench/ClassWriter.h"
#include "bench/JavaScriptWriter.h"
#include "bench/MembersWriter.h"
#include "bench/ToolOptions.h"

namespace {

constexpr std::size_t kUsualBytes = 5000;
constexpr std::size_t kClassesPerFolder = 40;
constexpr std::size_t kBases = 8;

enum class LanguageType { velum, javaScript };
// The share of the classes in a tree that need changes.
enum class MixType { half, all, none };

struct Options {
  std::uint64_t seed = 1;
  std::size_t count = 0;
  std::size_t bytes = 0;
  std::filesystem::path out;
  LanguageType language = LanguageType::velum;
  MixType mix = MixType::half;
  std::optional<bench::MemberType> members;
};

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) {
    throw std::runtime_error("can't write " + path.string());
  }
}

void writeClassFile(const Options& options, const std::filesystem::path& folder,
                    const bench::ClassShape& shape) {
  const bool isVelum = options.language == LanguageType::velum;
  writeFile(folder / (shape.name + (isVelum ? ".vlm" : ".js")),
            isVelum ? writeClass(shape) : writeJavaScriptClass(shape));
}

bench::FormType formOf(const Options& options, std::size_t number) {
  const bool isOutdated =
      options.mix == MixType::all || (options.mix == MixType::half && number % 2 == 0);
  return isOutdated ? bench::FormType::outdated : bench::FormType::current;
}

std::string baseName(std::size_t number) { return fmt::format("Base{}", number); }

// The base classes, in a folder of their own; up to date, because usually many classes use a base
// and few change it.
void writeBases(const Options& options) {
  for (std::size_t i = 0; i < kBases; ++i) {
    const bench::ClassShape shape{.name = baseName(i),
                                  .base = i == 0 ? "" : "common.blocks." + baseName((i - 1) / 2),
                                  .form = bench::FormType::current,
                                  .seed = options.seed + i,
                                  .minimumBytes = kUsualBytes};
    writeClassFile(options, options.out / "common" / "blocks", shape);
  }
}

void writeTree(const Options& options) {
  writeBases(options);
  bench::Dice dice(options.seed);
  for (std::size_t i = 0; i < options.count; ++i) {
    const bool direct = dice.once(4);
    const bench::ClassShape shape{
        .name = fmt::format("Block{:05}", i),
        .base = direct ? "" : "common.blocks." + baseName(dice.roll(kBases)),
        .form = formOf(options, i),
        .seed = options.seed + kBases + i,
        .minimumBytes = kUsualBytes};
    writeClassFile(options, options.out / fmt::format("area{:03}", i / kClassesPerFolder), shape);
  }
}

void writeLarge(const Options& options) {
  const bench::ClassShape shape{.name = "Large",
                                .base = "",
                                .form = bench::FormType::outdated,
                                .seed = options.seed,
                                .minimumBytes = options.bytes};
  writeClassFile(options, options.out, shape);
}

void write(const Options& options) {
  if (options.members) {
    writeFile(options.out / "Many.vlm", writeMembers("Many", *options.members, options.count));
    return;
  }
  if (options.count > 0) writeTree(options);
  if (options.bytes > 0) writeLarge(options);
}

const std::map<std::string, LanguageType> languages = {{"velum", LanguageType::velum},
                                                       {"javascript", LanguageType::javaScript}};
const std::map<std::string, MixType> mixes = {
    {"half", MixType::half}, {"all", MixType::all}, {"none", MixType::none}};
const std::map<std::string, bench::MemberType> memberTypes = {
    {"plain", bench::MemberType::plain},
    {"positive", bench::MemberType::positiveInteger},
    {"stringset", bench::MemberType::stringSet},
    {"method", bench::MemberType::method}};

template <class Value>
Value choose(const std::map<std::string, Value>& values, const std::string& name) {
  const auto found = values.find(name);
  if (found == values.end()) throw std::runtime_error("unknown choice '" + name + "'");
  return found->second;
}

}  // namespace

int main(int argc, char** argv) try {
  Options options;
  std::string out;
  std::string language = "velum";
  std::string mix = "half";
  std::string members;
  const auto exitCode = bench::parseToolOptions(
      "Writes made-up class files for measurements",
      {{"--seed", "The same number makes the same files", &options.seed},
       {"--count", "So many classes, besides their bases", &options.count},
       {"--bytes", "One class of at least so many bytes", &options.bytes},
       {"--out", "The folder for them", &out},
       {"--language", "velum (default) or javascript", &language},
       {"--outdated", "How many of the classes are: half (default), all, none", &mix},
       {"--members", "One class of --count members of a kind: plain, positive, stringset or method",
        &members}},
      argc, argv);
  if (exitCode) return *exitCode;
  if (out.empty()) throw std::runtime_error("--out is missing");
  options.out = out;
  options.language = choose(languages, language);
  options.mix = choose(mixes, mix);
  if (!members.empty()) options.members = choose(memberTypes, members);
  write(options);
  return 0;
} catch (const std::exception& error) {
  fmt::print(stderr, "generate_classes: {}\n", error.what());
  return 1;
}
