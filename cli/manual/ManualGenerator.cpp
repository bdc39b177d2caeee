// Writes the manual page and the completion scripts.
//
//   soca_manual FOLDER
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "cli/manual/Completions.h"
#include "cli/manual/ManualPage.h"

namespace {

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
  out.close();
  if (!out) throw std::runtime_error(path.string() + " can't be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  try {
    const std::filesystem::path folder = argv[1];
    writeFile(folder / "soca.1", soca::cli::manualPage());
    writeFile(folder / "soca.bash", soca::cli::bashCompletion());
    writeFile(folder / "_soca", soca::cli::zshCompletion());
    writeFile(folder / "soca.fish", soca::cli::fishCompletion());
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << "\n";
    return 1;
  }
  return 0;
}
