// The texts that classes have after each pass of a run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "files/writing/Spool.h"
#include "platform/text/UString.h"

namespace soca {

// Keeps the texts in a spool, so that memory does not grow with them, and the last ones that were
// read in memory: the classes of a tree often share a few superclasses. Safe to use from several
// threads.
class PassTexts {
 public:
  using Text = std::shared_ptr<const fl::ustring>;

  // The text of the class with this number after the pass. Passes are counted from 1, and those of
  // one class are put in their order.
  void put(std::size_t number, unsigned pass, const fl::ustring& text);

  // The text after the pass, or after the last one before it that changed it; null for the text as
  // it was read. The same pointer while the text is in memory.
  Text get(std::size_t number, unsigned pass);

 private:
  struct Stored {
    unsigned pass = 0;
    Spool::Place place;
    std::weak_ptr<const fl::ustring> text;
  };

  static constexpr std::size_t mostInMemory = 256;

  std::mutex mutex_;
  Spool spool_;
  std::unordered_map<std::size_t, std::vector<Stored>> texts_;
  // A ring of the texts that were read last.
  std::vector<Text> recent_;
  std::size_t nextRecent_ = 0;
};

}  // namespace soca
