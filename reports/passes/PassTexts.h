// The texts that classes have after each pass of a run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
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

  // Stores a text that a class may have after a pass, or anything else.
  Spool::Place store(fl::ustring_view text);
  Spool::Place store(std::string_view bytes);
  std::string take(const Spool::Place& place);

  // Gives the class with this number a stored text after the pass. Passes are counted from 1, and
  // those of one class are set in their order.
  void set(std::size_t number, unsigned pass, const Spool::Place& text);

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
