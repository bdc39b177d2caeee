// The lower bound for replacing files safely: each is read and written to a new file beside it, all
// are flushed to the disk by one call, and each is renamed. `soca update --write` is compared with
// this.
//   bare_write FOLDER
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {
    if (number < 0) throw std::runtime_error("can't open a file");
  }
  ~Descriptor() { ::close(number_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }

 private:
  int number_;
};

std::string readFile(const std::string& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status = {};
  if (::fstat(file.number(), &status) != 0) throw std::runtime_error("can't look at " + path);
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  if (::read(file.number(), bytes.data(), bytes.size()) != status.st_size) {
    throw std::runtime_error("can't read " + path);
  }
  return bytes;
}

void writeFile(const std::string& path, const std::string& bytes) {
  const Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
  if (::write(file.number(), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("can't write " + path);
  }
}

void flush(const std::string& folder) {
  const Descriptor place(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (::syncfs(place.number()) != 0) throw std::runtime_error("can't flush " + folder);
}

void replaceAll(const std::string& folder) {
  std::vector<std::pair<std::string, std::string>> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const std::string path = entry.path().string();
    names.emplace_back(path + ".new", path);
    writeFile(names.back().first, readFile(path));
  }
  flush(folder);
  for (const auto& [from, to] : names) std::filesystem::rename(from, to);
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) throw std::runtime_error("wanted: bare_write FOLDER");
  replaceAll(argv[1]);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "bare_write: %s\n", error.what());
  return 1;
}
