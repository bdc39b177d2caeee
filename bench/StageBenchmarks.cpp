// The cost of each stage of an update, for one generated class. `bytes_per_second` counts the bytes
// of its file.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/ClassWriter.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/lexer/Lexer.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"
#include "rules/RuleFamilies.h"
#include "service/ActionCollection.h"
#include "service/ClassLoader.h"
#include "service/ServiceContext.h"
#include "service/UpdatePlan.h"
#include "service/UpdatedClass.h"

namespace {

constexpr std::size_t kSmall = 5000;
constexpr std::size_t kLarge = 1000000;

// The class and its texts; its file is in a temporary folder until the process ends.
class Sample {
 public:
  explicit Sample(std::size_t bytes)
      : folder_(std::filesystem::temp_directory_path() /
                ("soca_bench_" + std::to_string(::getpid()))),
        bytes_(bench::writeClass({.name = "Sample",
                                  .base = "",
                                  .form = bench::FormType::outdated,
                                  .seed = 1,
                                  .minimumBytes = bytes})),
        text_(fl::decodeFileText(bytes_).text) {
    std::filesystem::create_directories(folder_);
    std::ofstream(folder_ / "Sample.vlm", std::ios::binary) << bytes_;
    PathDispatcher::getDispatcher().setClassPath({folder_.string()});
  }
  ~Sample() { std::filesystem::remove_all(folder_); }
  Sample(const Sample&) = delete;
  Sample& operator=(const Sample&) = delete;

  const std::string& bytes() const { return bytes_; }
  const fl::ustring& text() const { return text_; }

 private:
  std::filesystem::path folder_;
  std::string bytes_;
  fl::ustring text_;
};

Sample sampleOf(const benchmark::State& state) {
  return Sample(static_cast<std::size_t>(state.range(0)));
}

void countBytes(benchmark::State& state, const Sample& sample) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sample.bytes().size()));
}

class NoErrors final : public ca::LexicalErrors {
 public:
  void reportLexicalError(std::uint32_t /*position*/, const char* /*message*/) override {}
};

void decode(benchmark::State& state) {
  const Sample sample = sampleOf(state);
  for (auto _ : state) benchmark::DoNotOptimize(fl::decodeFileText(sample.bytes()));
  countBytes(state, sample);
}

void encode(benchmark::State& state) {
  const Sample sample = sampleOf(state);
  for (auto _ : state) {
    benchmark::DoNotOptimize(fl::encodeFileText(sample.text(), fl::EncodingType::utf8));
  }
  countBytes(state, sample);
}

// The tokens without a parser, which would decide on quotes and commands.
void scan(benchmark::State& state) {
  const Sample sample = sampleOf(state);
  NoErrors errors;
  ca::CharacterMap map;
  for (auto _ : state) {
    map.read(sample.text());
    ca::Lexer lexer(sample.text(), map, errors);
    std::uint32_t at = 0;
    while (at < lexer.size()) {
      const ca::Token token = lexer.scan(at);
      at = token.end > at ? token.end : at + 1;
    }
    benchmark::DoNotOptimize(at);
  }
  countBytes(state, sample);
}

void parse(benchmark::State& state) {
  const Sample sample = sampleOf(state);
  for (auto _ : state) benchmark::DoNotOptimize(ca::analyzeText(sample.text()));
  countBytes(state, sample);
}

// From the class name to the model; the analysis of the file is cached.
void load(benchmark::State& state) {
  const Sample sample = sampleOf(state);
  const soca::ServiceContext context(soca::allFamilies);
  for (auto _ : state) {
    benchmark::DoNotOptimize(soca::ClassLoader{u"Sample", context.metaData.get()}.load());
  }
  countBytes(state, sample);
}

// The actions of the families that the mask selects, without loading.
void collect(benchmark::State& state) {
  const Sample sample = sampleOf(state);
  const soca::ServiceContext context(static_cast<soca::UpdateMask>(state.range(1)));
  for (auto _ : state) {
    state.PauseTiming();
    auto loaded = soca::ClassLoader{u"Sample", context.metaData.get()}.load();
    state.ResumeTiming();
    benchmark::DoNotOptimize(soca::collectClassActions(std::move(loaded), context.factories));
  }
  countBytes(state, sample);
}

void apply(benchmark::State& state) {
  const Sample sample = sampleOf(state);
  const soca::ServiceContext context(soca::allFamilies);
  for (auto _ : state) {
    state.PauseTiming();
    auto entry = soca::collectClassActions(
        soca::ClassLoader{u"Sample", context.metaData.get()}.load(), context.factories);
    state.ResumeTiming();
    const auto updated =
        soca::updateClass(std::move(entry), context, soca::MissingDelimiterType::endsProcess);
    benchmark::DoNotOptimize(updated.file->getText());
  }
  countBytes(state, sample);
}

void update(benchmark::State& state) {
  const Sample sample = sampleOf(state);
  for (auto _ : state)
    benchmark::DoNotOptimize(soca::planUpdate(u"Sample", soca::allFamilies, false));
  countBytes(state, sample);
}

BENCHMARK(decode)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(encode)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(scan)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(parse)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(load)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(apply)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(update)->Arg(kSmall)->Arg(kLarge);

[[maybe_unused]] const bool areFamiliesRegistered = [] {
  for (const soca::RuleFamily& family : soca::ruleFamilies) {
    benchmark::RegisterBenchmark("collect", collect)
        ->ArgNames({"", std::string(family.name)})
        ->Args({kLarge, static_cast<std::int64_t>(family.bit)});
  }
  return true;
}();

}  // namespace

BENCHMARK_MAIN();
