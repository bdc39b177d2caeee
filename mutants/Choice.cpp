#include "mutants/Choice.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>

namespace mutants {
namespace {

// Differs from the number, in an order that depends on the seed.
unsigned shuffled(unsigned number, unsigned seed) {
  unsigned value = (number ^ (seed * 0x9E3779B9U)) * 0x85EBCA6BU;
  value ^= value >> 13U;
  return value * 0xC2B2AE35U;
}

}  // namespace

std::vector<Mistake> choose(const std::vector<Mistake>& mistakes, const std::set<unsigned>& useless,
                            std::size_t count, unsigned seed) {
  std::vector<Mistake> order = mistakes;
  std::ranges::sort(order, {}, [&](const Mistake& each) { return shuffled(each.number, seed); });
  std::set<unsigned> numbers = useless;
  std::erase_if(order, [&](const Mistake& each) { return !numbers.insert(each.number).second; });
  // The mistakes of one kind have their turns one after the other, and so have the kinds of a file.
  std::map<std::pair<std::string, KindType>, std::size_t> ofKind;
  std::map<std::string, std::size_t> ofFile;
  std::vector<std::pair<std::size_t, Mistake>> turns;
  turns.reserve(order.size());
  for (const Mistake& each : order) turns.emplace_back(ofKind[{each.file, each.kind}]++, each);
  std::ranges::stable_sort(turns, {}, [](const auto& turn) { return turn.first; });
  for (auto& [turn, each] : turns) turn = ofFile[each.file]++;
  std::ranges::stable_sort(turns, {}, [](const auto& turn) { return turn.first; });
  turns.resize(std::min(count, turns.size()));
  std::vector<Mistake> chosen(turns.size());
  std::ranges::transform(turns, chosen.begin(), [](const auto& turn) { return turn.second; });
  std::ranges::sort(chosen, {}, [](const Mistake& each) {
    return std::tuple(each.file, each.line, each.number);
  });
  return chosen;
}

}  // namespace mutants
