// Runs commands in turns and prints the cost of each: other load on the machine then affects all of
// them alike, so that ratios are stable where times are not.
//   run_in_turns [--runs 5] [--bytes N] [--before COMMAND] NAME COMMAND [NAME COMMAND ...]
// A command is split at its blanks and run without a shell; its output is discarded. `--before` is
// a shell command that is run before each of the counted runs, and is not counted.
#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Options {
  unsigned runs = 5;
  std::uint64_t bytes = 0;
  std::string before;
  std::vector<std::string> words;
};

// The cost of one run: seconds, and MiB.
struct Figures {
  double wall = 0;
  double cpu = 0;
  double peak = 0;
};

struct Contender {
  std::string name;
  std::vector<std::string> command;
  std::vector<Figures> runs;
};

std::vector<std::string> splitAtBlanks(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

// Starts the command with its output discarded.
pid_t start(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
  }
  pid_t child = 0;
  const int error =
      posix_spawnp(&child, arguments.front(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("can't start " + command.front());
  return child;
}

Figures run(const std::vector<std::string>& command) {
  const auto begin = std::chrono::steady_clock::now();
  const pid_t child = start(command);
  int status = 0;
  rusage usage = {};
  if (wait4(child, &status, 0, &usage) < 0) throw std::runtime_error("the run got lost");
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
  // Linters exit with 1 when they find something; other failures are not counted as runs.
  if (!WIFEXITED(status) || WEXITSTATUS(status) > 2) {
    throw std::runtime_error("a run failed: " + command.front());
  }
  return {wall.count(), secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
          static_cast<double>(usage.ru_maxrss) / 1024};
}

void prepare(const std::string& before) {
  if (!before.empty() && std::system(before.c_str()) != 0) {
    throw std::runtime_error("this failed: " + before);
  }
}

double median(const std::vector<Figures>& runs, double Figures::* figure) {
  std::vector<double> values;
  for (const Figures& each : runs) values.push_back(each.*figure);
  std::ranges::sort(values);
  return values[values.size() / 2];
}

// The median of the ratios to the first contender's run in the same turn.
double medianRatio(const Contender& contender, const Contender& first, double Figures::* figure) {
  std::vector<double> ratios;
  for (std::size_t i = 0; i < contender.runs.size(); ++i) {
    ratios.push_back(contender.runs[i].*figure / std::max(first.runs[i].*figure, 1e-6));
  }
  std::ranges::sort(ratios);
  return ratios[ratios.size() / 2];
}

void print(const Options& options, const std::vector<Contender>& contenders) {
  fmt::print("{:<34}{:>11}{:>11}{:>10}{:>10}{:>8}{:>8}\n", "", "wall ms", "CPU ms", "MB/CPU s",
             "peak MiB", "wall", "CPU");
  for (const Contender& contender : contenders) {
    const double cpu = median(contender.runs, &Figures::cpu);
    const double speed = 1e-6 * static_cast<double>(options.bytes) / std::max(cpu, 1e-6);
    fmt::print("{:<34}{:>11.2f}{:>11.2f}{:>10}{:>10.1f}{:>8.2f}{:>8.2f}\n", contender.name,
               1e3 * median(contender.runs, &Figures::wall), 1e3 * cpu,
               options.bytes == 0 ? "" : fmt::format("{:.1f}", speed),
               median(contender.runs, &Figures::peak),
               medianRatio(contender, contenders.front(), &Figures::wall),
               medianRatio(contender, contenders.front(), &Figures::cpu));
  }
  std::fflush(stdout);
}

void runInTurns(const Options& options) {
  std::vector<Contender> contenders;
  for (std::size_t i = 0; i + 1 < options.words.size(); i += 2) {
    contenders.push_back({options.words[i], splitAtBlanks(options.words[i + 1]), {}});
  }
  for (unsigned turn = 0; turn <= options.runs; ++turn) {
    for (Contender& contender : contenders) {
      prepare(options.before);
      const Figures figures = run(contender.command);
      // The first turn warms the caches.
      if (turn > 0) contender.runs.push_back(figures);
    }
  }
  print(options, contenders);
}

}  // namespace

int main(int argc, char** argv) try {
  Options options;
  CLI::App app{"Runs commands in turns and prints what each took"};
  app.add_option("--runs", options.runs, "Counted runs of each")
      ->take_last()
      ->check(CLI::Range(1, 1000));
  app.add_option("--bytes", options.bytes, "What a run reads, for the speed");
  app.add_option("--before", options.before, "A shell line to run before each run");
  app.add_option("words", options.words, "Names and commands, by turns")->required();
  CLI11_PARSE(app, argc, argv);
  runInTurns(options);
  return 0;
} catch (const std::exception& error) {
  fmt::print(stderr, "run_in_turns: {}\n", error.what());
  return 1;
}
