// Descriptions of classes that were read before, for as long as their files stay the same.
#pragma once

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>

#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"

namespace sotarn {

// Keeps a bounded number of the descriptions last asked for. May be used from several threads.
class DescriptionCache {
 public:
  using Description = std::shared_ptr<const ClassDescription>;

  // The description under `key`, which names a file, if it was kept when the file had this stamp,
  // else null.
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
  // When the young generation is full it becomes the old one, and what nobody asked for meanwhile
  // is dropped.
  Generation young_;
  Generation old_;
};

}  // namespace sotarn
