// Writes the initial inputs of the fuzzers, or runs the targets on them without a fuzzer:
//   fuzz_seeds --out DIR    a folder of files for each target
//   fuzz_seeds --check      the same inputs, and those in fuzz/inputs/, through their targets
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "bench/ToolOptions.h"
#include "fuzz/ClassFiles.h"
#include "fuzz/Targets.h"
#include "platform/text/FileText.h"
#include "tests/Places.h"
#include "tests/cases/CaseFile.h"

namespace soca::fuzz {
namespace {

namespace fs = std::filesystem;

struct Input {
  std::string target;
  std::string name;
  std::string bytes;
};

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string classNameOf(const std::string& path) {
  std::string name = fs::path(path).replace_extension().string();
  std::ranges::replace(name, '/', '.');
  return name;
}

// The class files of a case, and its class table.
std::vector<ClassFile> filesOf(const testing::Case& testCase) {
  constexpr std::string_view before = "before/";
  std::vector<ClassFile> files;
  for (const testing::Section& section : testCase.sections) {
    const bool isTable = section.name == "table";
    if (!isTable && !section.name.ends_with(".vlm")) continue;
    if (!isTable && !section.name.starts_with(before)) continue;
    const std::string name =
        isTable ? "table.json" : classNameOf(section.name.substr(before.size()));
    files.push_back({name, fl::decodeFileText(section.text).text});
  }
  return files;
}

void addText(const std::string& name, const std::string& bytes, std::vector<Input>& inputs) {
  inputs.push_back({"analysis", name, bytes});
  // Two edits after the text.
  inputs.push_back({"edits", name,
                    bytes + std::string("\x02\x05\x00\x04\x01\x01", 6) +
                        std::string("\x07\x00\x01\x00\x03\x00\x02", 7)});
}

std::vector<Input> makeInputs() {
  std::vector<Input> inputs;
  for (const char* folder : {"tests/cases", "tests/known"}) {
    for (const testing::Case& each : testing::findCases(testing::projectPath(folder))) {
      const auto files = filesOf(each);
      inputs.push_back({"update", each.name, writeClassFiles(files)});
      if (!files.empty()) addText(each.name, writeClassFiles({{"C", files.front().text}}), inputs);
      if (const auto* table = each.find("table")) {
        inputs.push_back({"class_table", each.name, table->text});
      }
    }
  }
  for (const auto& entry : fs::recursive_directory_iterator(testing::projectPath("examples"))) {
    if (entry.path().extension() != ".vlm") continue;
    const std::string name = entry.path().stem().string();
    addText(name, readFile(entry.path()), inputs);
    inputs.push_back({"update", name,
                      writeClassFiles({{name, fl::decodeFileText(readFile(entry.path())).text}})});
  }
  for (const auto& [name, json] :
       {std::pair("all", R"({"classes": {"a.B": {"superclasses": ["pkg.Base"], "strictDefaults": )"
                         R"(true, "methods": ["f"], "properties": {"Mode": {"abstract": false, )"
                         R"("dependent": true, "constrainedSet": {"kind": 1, "valueType": 2, )"
                         R"("setProperty": "ModeSet", "values": ["a"]}}}}}})"),
        {"wrong", R"({"classes": {"a.B": {"superClasses": 1}}})"}}) {
    inputs.push_back({"class_table", name, json});
  }
  return inputs;
}

// Inputs with which a fuzzer found a fault: fuzz/inputs/<target>/<name>.
std::vector<Input> foundInputs() {
  std::vector<Input> inputs;
  for (const auto& entry : fs::recursive_directory_iterator(testing::projectPath("fuzz/inputs"))) {
    if (!entry.is_regular_file() || entry.path().extension() == ".md") continue;
    inputs.push_back({entry.path().parent_path().filename().string(),
                      entry.path().filename().string(), readFile(entry.path())});
  }
  return inputs;
}

void writeInputs(const fs::path& folder, const std::vector<Input>& inputs) {
  for (const Input& input : inputs) {
    fs::create_directories(folder / input.target);
    std::string name = input.name;
    std::ranges::replace(name, '/', '_');
    std::ofstream(folder / input.target / name, std::ios::binary) << input.bytes;
  }
}

bool runInput(const Input& input) {
  const auto target = std::ranges::find(targets, input.target, &Target::name);
  if (target == targets.end()) {
    fmt::print("{}/{}: there is no such target\n", input.target, input.name);
    return false;
  }
  try {
    target->run(input.bytes);
  } catch (const std::exception& error) {
    fmt::print("{}/{}: {}\n", input.target, input.name, error.what());
    return false;
  }
  return true;
}

}  // namespace
}  // namespace soca::fuzz

int main(int argc, char** argv) {
  std::string out;
  bool isChecking = false;
  const auto exitCode =
      bench::parseToolOptions("What the fuzzers begin with",
                              {{"--out", "The folder for the files", &out},
                               {"--check", "Run the targets on all of it", &isChecking}},
                              argc, argv);
  if (exitCode) return *exitCode;
  auto inputs = soca::fuzz::makeInputs();
  std::ranges::move(soca::fuzz::foundInputs(), std::back_inserter(inputs));
  if (!out.empty()) soca::fuzz::writeInputs(out, inputs);
  if (!isChecking) return 0;
  const auto failed =
      std::ranges::count_if(inputs, [](const auto& input) { return !soca::fuzz::runInput(input); });
  fmt::print("{} inputs, {} failures\n", inputs.size(), failed);
  return failed == 0 ? 0 : 1;
}
