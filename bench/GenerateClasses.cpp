// Writes trees of made-up class files, the same ones for the same seed:
//   generate_classes --seed 1 --count 2000 --out DIR     a tree of classes, half of them outdated
//   generate_classes --seed 1 --bytes 10000000 --out DIR one class of that size, DIR/Large.vlm
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "bench/ClassWriter.h"

namespace {

constexpr std::size_t kUsualBytes = 5000;
constexpr std::size_t kClassesPerFolder = 40;
constexpr std::size_t kBases = 8;

struct Options {
  std::uint64_t seed = 1;
  std::size_t count = 0;
  std::size_t bytes = 0;
  std::filesystem::path out;
};

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) {
    throw std::runtime_error("can't write " + path.string());
  }
}

std::string baseName(std::size_t number) { return fmt::format("Base{}", number); }

// The classes that the others derive from, in a folder of their own; up to date, since many read
// them and few change them.
void writeBases(const Options& options) {
  for (std::size_t i = 0; i < kBases; ++i) {
    const bench::ClassShape shape{.name = baseName(i),
                                  .base = i == 0 ? "" : "common.blocks." + baseName((i - 1) / 2),
                                  .form = bench::FormType::current,
                                  .seed = options.seed + i,
                                  .minimumBytes = kUsualBytes};
    writeFile(options.out / "common" / "blocks" / (shape.name + ".vlm"), writeClass(shape));
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
        .form = i % 2 == 0 ? bench::FormType::outdated : bench::FormType::current,
        .seed = options.seed + kBases + i,
        .minimumBytes = kUsualBytes};
    const std::string folder = fmt::format("area{:03}", i / kClassesPerFolder);
    writeFile(options.out / folder / (shape.name + ".vlm"), writeClass(shape));
  }
}

void writeLarge(const Options& options) {
  const bench::ClassShape shape{.name = "Large",
                                .base = "",
                                .form = bench::FormType::outdated,
                                .seed = options.seed,
                                .minimumBytes = options.bytes};
  writeFile(options.out / "Large.vlm", writeClass(shape));
}

}  // namespace

int main(int argc, char** argv) try {
  Options options;
  CLI::App app{"Writes made-up class files for measurements"};
  app.add_option("--seed", options.seed, "The same number makes the same files");
  app.add_option("--count", options.count, "So many classes, besides their bases");
  app.add_option("--bytes", options.bytes, "One class of at least so many bytes");
  app.add_option("--out", options.out, "The folder for them")->required();
  CLI11_PARSE(app, argc, argv);
  if (options.count > 0) {
    writeTree(options);
  }
  if (options.bytes > 0) {
    writeLarge(options);
  }
  return 0;
} catch (const std::exception& error) {
  fmt::print(stderr, "generate_classes: {}\n", error.what());
  return 1;
}
