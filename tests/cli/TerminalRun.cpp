#include "tests/cli/TerminalRun.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "tests/Places.h"

namespace soca::testing {
namespace {

constexpr int patienceMilliseconds = 60'000;

[[noreturn]] void execute(const Workspace& space, const std::vector<char*>& arguments) {
  termios settings = {};
  ::tcgetattr(STDIN_FILENO, &settings);
  settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  settings.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  ::tcsetattr(STDIN_FILENO, TCSANOW, &settings);
  ::setenv("TERM", "xterm", 1);
  if (::chdir(space.path().c_str()) == 0) ::execvp(arguments.front(), arguments.data());
  ::_exit(127);
}

}  // namespace

TerminalRun::TerminalRun(const Workspace& space, std::vector<std::string> command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (std::string& word : command) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  process_ = ::forkpty(&terminal_, nullptr, nullptr, nullptr);
  if (process_ < 0) throw std::runtime_error("no terminal");
  if (process_ == 0) execute(space, arguments);
}

TerminalRun::~TerminalRun() {
  ::close(terminal_);
  if (process_ == 0) return;
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
}

void TerminalRun::type(std::string_view keys) const {
  if (::write(terminal_, keys.data(), keys.size()) < 0) throw std::runtime_error("no terminal");
}

bool TerminalRun::waitFor(std::string_view text) {
  while (output_.find(text) == std::string::npos) {
    if (!readMore(patienceMilliseconds)) return false;
  }
  return true;
}

bool TerminalRun::hasPrinted(std::string_view text) {
  while (readMore(0)) {
  }
  return output_.find(text) != std::string::npos;
}

int TerminalRun::finish() {
  while (readMore(patienceMilliseconds)) {
  }
  int status = 0;
  ::waitpid(process_, &status, 0);
  process_ = 0;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool TerminalRun::readMore(int milliseconds) {
  std::array<char, 4096> buffer;
  pollfd waiting = {.fd = terminal_, .events = POLLIN, .revents = 0};
  if (::poll(&waiting, 1, milliseconds) != 1) return false;
  // Fails once no process has the terminal any more.
  const ssize_t count = ::read(terminal_, buffer.data(), buffer.size());
  if (count <= 0) return false;
  output_.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

std::string outputOnTerminal(const Workspace& space, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), programPath());
  TerminalRun run(space, std::move(arguments));
  run.finish();
  return run.output();
}

}  // namespace soca::testing
