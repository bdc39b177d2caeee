#include "cli/terminal/ShellCommand.h"

#include <fmt/core.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

namespace soca::cli {
namespace {

constexpr timespec waitingTime = {0, 10'000'000};

// What differs between the program and the command that it starts.
class SpawnSettings {
 public:
  explicit SpawnSettings(CommandOutputType output) {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawnattr_init(&attributes_);
    if (output == CommandOutputType::standardError) {
      ::posix_spawn_file_actions_adddup2(&actions_, STDERR_FILENO, STDOUT_FILENO);
    }
    // A signal that was ignored when the program started stays ignored.
    sigset_t signals;
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes_, &signals);
    ::sigaddset(&signals, SIGXFSZ);
    ::posix_spawnattr_setsigdefault(&attributes_, &signals);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  // Returns the number of an error, or 0.
  int start(std::string command, pid_t& process) const {
    std::array<std::string, 4> words = {"sh", "-c", "--", std::move(command)};
    const std::array<char*, 5> arguments = {words[0].data(), words[1].data(), words[2].data(),
                                            words[3].data(), nullptr};
    return ::posix_spawn(&process, "/bin/sh", &actions_, &attributes_, arguments.data(), environ);
  }

 private:
  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
};

std::string describeEnd(int status) {
  if (WIFSIGNALED(status)) {
    return fmt::format("was ended by a signal ({})", ::strsignal(WTERMSIG(status)));
  }
  const int code = WEXITSTATUS(status);
  return code == 0 ? "" : fmt::format("failed with exit code {}", code);
}

std::string describeError(std::string_view what, int error) {
  return fmt::format("can't be {}: {}", what, std::strerror(error));
}

CommandResult waitFor(pid_t process) {
  CommandResult result;
  while (true) {
    int status = 0;
    const pid_t ended = ::waitpid(process, &status, WNOHANG);
    const int error = errno;
    const auto interrupt = takeInterrupt();
    if (!result.interrupt) result.interrupt = interrupt;
    if (ended != 0) {
      result.failure = ended > 0 ? describeEnd(status) : describeError("waited for", error);
      return result;
    }
    if (interrupt && interrupt->isFromProcess) ::kill(process, interrupt->signal);
    ::nanosleep(&waitingTime, nullptr);
  }
}

}  // namespace

CommandResult runInShell(const std::string& command, CommandOutputType output) {
  // If it is ignored, the end of the command is lost.
  std::signal(SIGCHLD, SIG_DFL);
  catchRepeatedInterrupts();
  pid_t process = 0;
  const int error = SpawnSettings(output).start(command, process);
  CommandResult result;
  if (error == 0) {
    result = waitFor(process);
  } else {
    result.failure = describeError("started", error);
  }
  catchInterrupts();
  return result;
}

}  // namespace soca::cli
