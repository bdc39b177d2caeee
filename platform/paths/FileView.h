// A time during which files are taken to stay as they are.
#pragma once

#include <cstdint>

namespace fl::filesystem {

// One for each piece of work that reads the files as they stood before it, such as a run of a
// program: where a class has its file, and what the file is, is then found out once and not at
// every question. Without a view in force every question goes to the file system.
class FileView {
 public:
  FileView();

  // While it lives, the view is in force on the thread that made it: the class path and the class
  // runtime may answer from what the thread found out under the same view. Texts that lie over
  // files count as ever. Scopes nest; the innermost counts.
  class Scope {
   public:
    explicit Scope(const FileView& view);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    std::uint64_t outer_;
  };

  // The number of the view in force on this thread, which no other view ever has; 0 for none.
  static std::uint64_t current();

 private:
  std::uint64_t number_;
};

}  // namespace fl::filesystem
