// What is to be printed of the classes of a run that are held back until all classes are known.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "files/writing/Spool.h"

namespace soca::cli {

class HeldClasses {
 public:
  struct Texts {
    std::string data;
    std::string notes;
    // The packed numbers of the class; empty if it cannot change any more, or if it failed.
    std::string counts;
  };

  // Small, because there may be as many as there are classes.
  struct Entry {
    // The number of the class in the passes, and with `--write` its number in the queue.
    std::uint32_t number = 0;
    std::uint32_t queued = 0;
    std::uint32_t dataSize = 0;
    std::uint32_t notesSize = 0;
    std::uint32_t countsSize = 0;
    std::uint64_t start = 0;
  };

  // In the order of their numbers.
  void add(std::size_t number, std::size_t queued, const Texts& texts) {
    Entry& entry = entries_.emplace_back();
    entry.number = static_cast<std::uint32_t>(number);
    entry.queued = static_cast<std::uint32_t>(queued);
    put(texts, entry);
  }

  void put(const Texts& texts, Entry& entry) {
    entry.start = spool_.put(texts.data).offset;
    spool_.put(texts.notes);
    spool_.put(texts.counts);
    entry.dataSize = static_cast<std::uint32_t>(texts.data.size());
    entry.notesSize = static_cast<std::uint32_t>(texts.notes.size());
    entry.countsSize = static_cast<std::uint32_t>(texts.counts.size());
  }

  Texts take(const Entry& entry) {
    const std::size_t printed = std::size_t{entry.dataSize} + entry.notesSize;
    if (printed + entry.countsSize == 0) return {};
    const std::string all = spool_.take({entry.start, printed + entry.countsSize});
    return {all.substr(0, entry.dataSize), all.substr(entry.dataSize, entry.notesSize),
            all.substr(printed)};
  }

  // The entry of the class with this number in the passes, which is held.
  Entry& find(std::size_t number) {
    return *std::ranges::lower_bound(entries_, number, {}, &Entry::number);
  }

  void clear() {
    std::vector<Entry>().swap(entries_);
    spool_.drop();
  }

  bool empty() const { return entries_.empty(); }
  const std::vector<Entry>& entries() const { return entries_; }

 private:
  std::vector<Entry> entries_;
  Spool spool_;
};

}  // namespace soca::cli
