#include "conversions/passes/TextChanges.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace soca {
namespace {

using Numbers = std::vector<std::uint32_t>;

void sortUnique(Numbers& numbers) {
  std::ranges::sort(numbers);
  const auto rest = std::ranges::unique(numbers);
  numbers.erase(rest.begin(), rest.end());
}

// The conversions that make an edit.
Numbers findOwners(const PlannedClass& planned, const TextEdit& edit,
                   std::span<const std::uint32_t> numbers) {
  Numbers owners;
  const auto add = [&](std::span<const ActionOwner> some) {
    for (const ActionOwner& owner : some) owners.push_back(numbers[owner.conversion]);
  };
  for (const std::size_t action : edit.actions) {
    add(action == everyAction ? planned.owners : planned.ownersOf(action));
  }
  sortUnique(owners);
  return owners;
}

// The changes of the text that begins at `start`.
fl::ustring applyFrom(std::size_t start, fl::ustring_view text,
                      std::span<const TextChange> changes) {
  fl::ustring newText;
  std::size_t next = 0;
  for (const TextChange& change : changes) {
    newText.append(text.substr(next, change.offset - start - next)).append(change.text);
    next = change.offset - start + change.length;
  }
  return newText.append(text.substr(next));
}

std::size_t sizeOf(std::span<const fl::ustring_view> tokens) {
  std::size_t size = 0;
  for (const fl::ustring_view token : tokens) size += token.size();
  return size;
}

// Removes from the ends of the change what it does not change.
void trim(fl::ustring_view oldText, TextChange& change) {
  const auto before = splitIntoTokens(oldText.substr(change.offset, change.length));
  const auto after = splitIntoTokens(change.text);
  const std::size_t most = std::min(before.size(), after.size());
  std::size_t first = 0;
  while (first < most && before[first] == after[first]) ++first;
  std::size_t last = 0;
  const auto isSameFromEnd = [&](std::size_t i) {
    return before[before.size() - i] == after[after.size() - i];
  };
  while (last < most - first && isSameFromEnd(last + 1)) ++last;
  const std::size_t start = sizeOf(std::span(before).first(first));
  const std::size_t kept = start + sizeOf(std::span(before).last(last));
  change.offset += start;
  change.length -= kept;
  change.text = change.text.substr(start, change.text.size() - kept);
}

// Walks through the text between both lists, which is that after the first ones.
class Composer {
 public:
  Composer(fl::ustring_view oldText, const TextChanges& first, const TextChanges& second)
      : oldText_(oldText), first_(first), second_(second) {}

  TextChanges compose() {
    result_.reserve(first_.size() + second_.size());
    while (startOfFirst() != atEnd || startOfSecond() != atEnd) addGroup();
    return std::move(result_);
  }

 private:
  static constexpr std::size_t atEnd = std::numeric_limits<std::size_t>::max();

  // The start of the next change, in the text between.
  std::size_t startOfFirst() const {
    if (nextFirst_ == first_.size()) return atEnd;
    return first_[nextFirst_].offset + inserted_ - deleted_;
  }

  std::size_t startOfSecond() const {
    return nextSecond_ == second_.size() ? atEnd : second_[nextSecond_].offset;
  }

  // Adds the change that the next changes make which touch each other.
  void addGroup() {
    const std::size_t start = std::min(startOfFirst(), startOfSecond());
    const std::size_t firstBegin = nextFirst_;
    const std::size_t secondBegin = nextSecond_;
    TextChange group{start + deleted_ - inserted_, 0, {}, {}};
    const fl::ustring between = collectGroup(start, group.conversions);
    group.length = start + between.size() + deleted_ - inserted_ - group.offset;
    group.text = applyFrom(start, between,
                           std::span(second_).subspan(secondBegin, nextSecond_ - secondBegin));
    sortUnique(group.conversions);
    if (nextFirst_ > firstBegin && nextSecond_ > secondBegin) trim(oldText_, group);
    if (group.length > 0 || !group.text.empty()) result_.push_back(std::move(group));
  }

  // Returns the text between from `start` on, as far as the group extends. What is not from a first
  // change is deleted by a second one, so it has any characters.
  fl::ustring collectGroup(std::size_t start, Numbers& conversions) {
    fl::ustring between;
    const auto extendTo = [&](std::size_t size) {
      if (size > between.size()) between.resize(size);
    };
    while (true) {
      const std::size_t end = start + between.size();
      if (startOfFirst() <= end) {
        const std::size_t offset = startOfFirst() - start;
        const TextChange& change = first_[nextFirst_++];
        extendTo(offset + change.text.size());
        between.replace(offset, change.text.size(), change.text);
        inserted_ += change.text.size();
        deleted_ += change.length;
        std::ranges::copy(change.conversions, std::back_inserter(conversions));
      } else if (startOfSecond() <= end) {
        const TextChange& change = second_[nextSecond_++];
        extendTo(change.offset - start + change.length);
        std::ranges::copy(change.conversions, std::back_inserter(conversions));
      } else {
        return between;
      }
    }
  }

  fl::ustring_view oldText_;
  const TextChanges& first_;
  const TextChanges& second_;
  std::size_t nextFirst_ = 0;
  std::size_t nextSecond_ = 0;
  // The numbers of code units that the first changes up to here insert and delete.
  std::size_t inserted_ = 0;
  std::size_t deleted_ = 0;
  TextChanges result_;
};

}  // namespace

TextChanges findTextChanges(const PlannedClass& planned, std::span<const std::uint32_t> numbers) {
  TextChanges changes;
  for (TextEdit& edit : findTextEdits(planned).edits) {
    Numbers owners = findOwners(planned, edit, numbers);
    changes.push_back({edit.offset, edit.length, std::move(edit.text), std::move(owners)});
  }
  return changes;
}

TextChanges composeChanges(fl::ustring_view oldText, const TextChanges& first,
                           const TextChanges& second) {
  return Composer(oldText, first, second).compose();
}

fl::ustring applyChanges(fl::ustring_view oldText, const TextChanges& changes) {
  return applyFrom(0, oldText, changes);
}

std::vector<FileEdit> placeChanges(fl::ustring_view oldText, const TextChanges& changes,
                                   fl::EncodingType encoding) {
  EditPlacer placer(oldText, encoding);
  std::vector<FileEdit> edits;
  edits.reserve(changes.size());
  for (const TextChange& change : changes) {
    FileEdit& edit = edits.emplace_back(placer.place(change.offset, change.length, change.text));
    edit.conversions.assign(change.conversions.begin(), change.conversions.end());
  }
  return edits;
}

}  // namespace soca
