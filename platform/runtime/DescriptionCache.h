// A cache of class descriptions, each valid while its file is unchanged.
#pragma once

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>

#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// Keeps a bounded number of recently used descriptions. Safe to use from several threads.
class DescriptionCache {
 public:
  using Description = std::shared_ptr<const ClassDescription>;

  // The description under `key`, which names a file, if it was stored with the same stamp;
  // otherwise null.
  Description find(const std::string& key, const fl::filesystem::FileStamp& stamp);
  void keep(const std::string& key, const fl::filesystem::FileStamp& stamp,
            Description description);

 private:
  struct Entry {
    fl::filesystem::FileStamp stamp;
    Description description;
  };
  using Generation = std::unordered_map<std::string, Entry>;

  void insert(const std::string& key, Entry entry);

  std::shared_mutex mutex_;
  // When the young generation is full it becomes the old one, and the entries of the previous old
  // one that were not used since are dropped.
  Generation young_;
  Generation old_;
};

}  // namespace sotarn
