// Runs the program as a user does.
#pragma once

#include <sys/types.h>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/platform/TemporaryFolder.h"

namespace soca::testing {

struct ProgramResult {
  // The exit code of the process, or 128 plus the number of the signal that killed it.
  int exitCode = 0;
  std::string out;
  std::string err;
};

// A temporary folder in which programs run, deleted with the object.
class Workspace {
 public:
  Workspace();
  ~Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // Outside the folder: the user's state folder for the newest object.
  std::filesystem::path statePath() const { return path_.string() + ".state"; }

  // Writes a file below the folder, and the folders that it needs.
  void write(const std::string& name, std::string_view bytes) const;
  std::string read(const std::string& name) const;
  // The bytes of all regular files, by their names relative to the folder.
  std::map<std::string, std::string> readAll() const;

  // Runs the program, or another one on the search path, in the folder.
  ProgramResult soca(std::vector<std::string> arguments) const;
  ProgramResult run(std::vector<std::string> command) const;
  // Starts the program without waiting for it; the caller must wait.
  pid_t start(std::vector<std::string> arguments) const;

 private:
  pid_t spawn(std::vector<std::string>& command, const std::string& out,
              const std::string& err) const;

  TemporaryFolder folder_;
  std::filesystem::path path_ = std::filesystem::canonical(folder_.path());
};

// A class that every rule family changes.
std::string outdatedClass(std::string_view name);

}  // namespace soca::testing
