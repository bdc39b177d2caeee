// What is to be printed of the classes of a run that are held back until all classes are known.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "files/writing/Spool.h"

namespace soca::cli {

class HeldClasses {
 public:
  struct Entry {
    // The number of the class in the passes, and with `--write` its number in the queue.
    std::size_t number = 0;
    std::size_t queued = 0;
    Spool::Place data;
    Spool::Place notes;
  };

  void add(std::size_t number, std::size_t queued, const std::string& data,
           const std::string& notes) {
    entries_.push_back({number, queued, spool_.put(data), spool_.put(notes)});
  }

  bool empty() const { return entries_.empty(); }
  const std::vector<Entry>& entries() const { return entries_; }
  std::string take(const Spool::Place& place) {
    return place.size == 0 ? std::string() : spool_.take(place);
  }

 private:
  std::vector<Entry> entries_;
  Spool spool_;
};

}  // namespace soca::cli
