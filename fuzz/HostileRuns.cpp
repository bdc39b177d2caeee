// Runs the program on hostile inputs and measures it:
//   hostile_inputs [--bytes N] [--only NAME] [--seconds S] [--mebibytes M]
// Prints one line for each input: time, memory, exit code. The exit code is 1 if a run exceeded the
// bounds, was killed, or failed without printing anything.
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/ToolOptions.h"
#include "fuzz/HostileInputs.h"
#include "tests/Places.h"
#include "tests/platform/TemporaryFolder.h"

namespace soca::fuzz {
namespace {

namespace fs = std::filesystem;

struct Options {
  std::string only;
  std::size_t bytes = 10'000'000;
  double seconds = 10;
  double mebibytes = 1024;
};

// The folder for one run's input and output, deleted with the object.
class RunFolder {
 public:
  RunFolder() { fs::create_directory(input()); }

  fs::path input() const { return folder_.path() + "/in"; }
  fs::path output() const { return folder_.path() + "/out"; }

 private:
  TemporaryFolder folder_;
};

struct Measured {
  // The exit code of the process, or 128 plus the number of the signal that killed it.
  int exitCode = 0;
  double seconds = 0;
  double mebibytes = 0;
  bool isSilent = false;
};

// Turns this process into the program: in the folder, with both outputs in one file, killed after
// `seconds` of processor time.
[[noreturn]] void becomeProgram(const Options& options, const HostileInput& input,
                                const RunFolder& folder) {
  const int out = open(folder.output().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  const auto limit = static_cast<rlim_t>(6 * options.seconds);
  const rlimit time = {limit, limit};
  std::string program = testing::programPath();
  std::vector<std::string> arguments = input.arguments;
  std::vector<char*> pointers = {program.data()};
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const bool isReady = out >= 0 && dup2(out, STDOUT_FILENO) >= 0 && dup2(out, STDERR_FILENO) >= 0 &&
                       chdir(folder.input().c_str()) == 0 && setrlimit(RLIMIT_CPU, &time) == 0;
  if (isReady) execv(program.c_str(), pointers.data());
  _exit(127);
}

Measured measure(const Options& options, const HostileInput& input, const RunFolder& folder) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process for the program");
  if (child == 0) becomeProgram(options, input, folder);
  int status = 0;
  rusage usage = {};
  if (wait4(child, &status, 0, &usage) != child) throw std::runtime_error("the process is lost");
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  const auto cpuTime = [](const timeval& value) {
    return static_cast<double>(value.tv_sec) + static_cast<double>(value.tv_usec) * 1e-6;
  };
  Measured measured;
  measured.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  // The processor time, if it is less, so that other processes do not count.
  measured.seconds = std::min(time.count(), cpuTime(usage.ru_utime) + cpuTime(usage.ru_stime));
  measured.mebibytes = static_cast<double>(usage.ru_maxrss) / 1024;
  measured.isSilent = fs::file_size(folder.output()) == 0;
  return measured;
}

// The fault of the run; empty if there is none.
std::string faultOf(const Options& options, const Measured& measured) {
  if (measured.exitCode > 2) return "ended badly";
  if (measured.isSilent && measured.exitCode != 0) return "failed without a word";
  if (measured.seconds > options.seconds) return "took too long";
  if (measured.mebibytes > options.mebibytes) return "took too much memory";
  return "";
}

bool run(const Options& options, const HostileInput& input) {
  const RunFolder folder;
  input.make(folder.input(), std::min(options.bytes, input.promisedBytes));
  const Measured measured = measure(options, input, folder);
  const std::string fault = faultOf(options, measured);
  fmt::print("{:<40} {:7.2f} s {:7.0f} MiB  exit {}{}{}\n", input.name, measured.seconds,
             measured.mebibytes, measured.exitCode, fault.empty() ? "" : "  ", fault);
  std::fflush(stdout);
  return fault.empty();
}

}  // namespace
}  // namespace soca::fuzz

int main(int argc, char** argv) try {
  soca::fuzz::Options options;
  const auto exitCode = bench::parseToolOptions(
      "Runs the program on hostile inputs and measures it",
      {{"--only", "The inputs with this in their names alone", &options.only},
       {"--bytes", "The size of each input", &options.bytes},
       {"--seconds", "The bound on time", &options.seconds},
       {"--mebibytes", "The bound on memory", &options.mebibytes}},
      argc, argv);
  if (exitCode) return *exitCode;
  int faults = 0;
  for (const auto& input : soca::fuzz::hostileInputs()) {
    if (input.name.find(options.only) == std::string::npos) continue;
    if (!soca::fuzz::run(options, input)) ++faults;
  }
  fmt::print("{} of these inputs broke a bound\n", faults);
  return faults == 0 ? 0 : 1;
} catch (const std::exception& error) {
  fmt::print(stderr, "hostile_inputs: {}\n", error.what());
  return 1;
}
