#include "platform/runtime/DescriptionCache.h"

#include <utility>

namespace sotarn {

namespace {

constexpr std::size_t generationSize = 1024;

}  // namespace

DescriptionCache::Description DescriptionCache::find(const std::string& key,
                                                     const fl::filesystem::FileStamp& stamp) {
  Entry found;
  {
    const std::shared_lock lock(mutex_);
    if (const auto entry = young_.find(key); entry != young_.end()) {
      return entry->second.stamp == stamp ? entry->second.description : nullptr;
    }
    const auto entry = old_.find(key);
    if (entry == old_.end() || entry->second.stamp != stamp) return nullptr;
    found = entry->second;
  }
  insert(key, found);
  return found.description;
}

void DescriptionCache::keep(const std::string& key, const fl::filesystem::FileStamp& stamp,
                            Description description) {
  insert(key, {stamp, std::move(description)});
}

void DescriptionCache::insert(const std::string& key, Entry entry) {
  const std::unique_lock lock(mutex_);
  if (young_.size() >= generationSize) {
    old_ = std::move(young_);
    young_.clear();
  }
  young_.insert_or_assign(key, std::move(entry));
}

}  // namespace sotarn
