// The class files that answers came from, to find out later which of them have changed.
#pragma once

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/runtime/ClassPlace.h"
#include "platform/text/UString.h"

namespace sotarn {

// Records each class that the class runtime describes on the threads on which it is in force, with
// the state of its file and its superclasses. Safe to use from several threads.
class ReadClasses {
 public:
  // During its life, the records of this thread go there.
  class Scope {
   public:
    explicit Scope(ReadClasses* classes);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    ReadClasses* outer_;
  };

  // The records of this thread; null for none.
  static ReadClasses* current();

  // The state of a file when it was read. A file that had changed just before has no stamp that
  // would show a later change; then its text is compared.
  struct FileRecord {
    ClassPlace place;
    std::optional<fl::filesystem::FileStamp> stamp;
    std::size_t textHash = 0;

    friend bool operator==(const FileRecord&, const FileRecord&) = default;
  };

  static std::size_t hashOf(fl::ustring_view text);

  // `file` is that of the description; without a source file, only its place counts.
  void add(const ClassDescription& description, FileRecord file);

  // The recorded classes that have changed since, or are found in another place, and those that
  // derive from them, of all that the named classes reach. To be called without a view of the files
  // in force.
  std::unordered_set<std::string> findChanged(const std::vector<std::string>& names) const;

 private:
  struct Record {
    // All states of the file that were read.
    std::vector<FileRecord> files;
    std::vector<std::string> superClasses;
  };

  bool hasChanged(const std::string& name) const;
  const std::vector<std::string>& superClassesOf(const std::string& name) const;

  mutable std::mutex mutex_;
  std::unordered_map<std::string, Record> records_;
};

}  // namespace sotarn
