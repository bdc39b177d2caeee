#include "tests/cli/ProgramRunner.h"
#include "tests/Places.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

int waitFor(pid_t process) {
  int status = 0;
  ::waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::vector<std::string> programCommand(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), programPath());
  return arguments;
}

}  // namespace

Workspace::Workspace() { ::setenv("XDG_STATE_HOME", statePath().c_str(), 1); }

Workspace::~Workspace() {
  std::error_code ignored;
  fs::remove_all(statePath(), ignored);
}

void Workspace::write(const std::string& name, std::string_view bytes) const {
  folder_.write(name, bytes);
}

std::string Workspace::read(const std::string& name) const { return readFile(path_ / name); }

std::map<std::string, std::string> Workspace::readAll() const {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(path_)) {
    if (!entry.is_regular_file() || entry.is_symlink()) continue;
    files[entry.path().lexically_relative(path_).string()] = readFile(entry.path());
  }
  return files;
}

ProgramResult Workspace::soca(std::vector<std::string> arguments) const {
  return run(programCommand(std::move(arguments)));
}

ProgramResult Workspace::run(std::vector<std::string> command) const {
  // Outside the folder, so that the program does not find them in it.
  const std::string out = path_.string() + ".out";
  const std::string err = path_.string() + ".err";
  ProgramResult result;
  result.exitCode = waitFor(spawn(command, out, err));
  result.out = readFile(out);
  result.err = readFile(err);
  fs::remove(out);
  fs::remove(err);
  return result;
}

pid_t Workspace::start(std::vector<std::string> arguments) const {
  auto command = programCommand(std::move(arguments));
  return spawn(command, "/dev/null", "/dev/null");
}

pid_t Workspace::spawn(std::vector<std::string>& command, const std::string& out,
                       const std::string& err) const {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (std::string& word : command) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  ::posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  ::posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  ::posix_spawn_file_actions_addchdir_np(&actions, path_.c_str());
  pid_t process = 0;
  const int error =
      ::posix_spawnp(&process, arguments.front(), &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("can't start " + command.front());
  return process;
}

std::string outdatedClass(std::string_view name) {
  return fmt::format(
      "classdef {} < velum.System & velum.system.mixin.Propagates\n"
      "    properties (Logical)\n"
      "        Flag = true; % it's caf\u00e9\n"
      "    end\n"
      "    properties\n"
      "        Mode = 'auto'\n"
      "    end\n"
      "    properties (Hidden)\n"
      "        ModeSet = velum.system.StringSet({{'auto', 'manual'}});\n"
      "    end\n"
      "    methods (Access = protected)\n"
      "        function flag = isInputSizeLockedImpl(obj, index)\n"
      "            flag = false;\n"
      "        end\n"
      "    end\n"
      "end\n",
      name);
}

}  // namespace soca::testing
