// A period during which files are assumed not to change.
#pragma once

#include <cstdint>

namespace fl::filesystem {

// One for each operation that works on the state of the files before it, such as a run of a
// program: the place and the stamp of each file are then looked up once. Without a view in force
// each lookup goes to the file system.
class FileView {
 public:
  FileView();

  // During its life, the view is in force on the thread that made it: the class path and the class
  // runtime may use what the thread looked up under the same view. Overlay texts are not affected.
  // Scopes nest; the innermost is in force.
  class Scope {
   public:
    explicit Scope(const FileView& view);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    std::uint64_t outer_;
  };

  // Puts a new view in force for one call, unless the caller has one in force.
  class CallScope {
   public:
    CallScope();
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

   private:
    std::uint64_t outer_;
  };

  // The unique number of the view in force on this thread; 0 for none.
  static std::uint64_t current();

 private:
  std::uint64_t number_;
};

}  // namespace fl::filesystem
