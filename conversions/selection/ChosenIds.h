// The ids of the conversions that a person chose, class by class.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "conversions/risk/Risk.h"

namespace soca {

struct ChosenConversion {
  // The part after the class: `attributes/logical:Gain`.
  std::string name;
  // The highest risk with which it was accepted.
  RiskType accepted = RiskType::unsafe;
};

// Takes about 50 bytes for each id. All texts are UTF-8; classes are known by their indices, in the
// order of their names.
class ChosenIds {
 public:
  // `sha256` is that of the file for which they were chosen. Each class may be added once, with
  // different names. Without conversions, nothing is added.
  void add(std::string_view className, std::string_view sha256,
           const std::vector<ChosenConversion>& chosen);
  // To be called after all classes were added, and before anything is looked up.
  void finish();

  std::size_t classCount() const { return classes_.size(); }
  std::size_t conversionCount() const { return conversions_.size(); }
  // Empty for a class of which nothing is chosen.
  std::optional<std::size_t> findClass(std::string_view className) const;
  std::string_view nameOf(std::size_t index) const { return viewOf(classes_[index].name); }
  std::string_view sha256Of(std::size_t index) const { return viewOf(classes_[index].sha256); }
  std::size_t conversionCountOf(std::size_t index) const { return classes_[index].count; }
  // The ids of its chosen conversions, in byte order.
  std::vector<std::string> idsOf(std::size_t index) const;
  // The risk with which the conversion of the class was accepted; empty if it is not chosen. `id`
  // begins with the name of the class.
  std::optional<RiskType> acceptedRisk(std::size_t index, std::string_view id) const;

 private:
  // A part of `texts_`.
  struct Text {
    std::uint32_t start = 0;
    std::uint32_t size = 0;
  };
  struct Conversion {
    Text name;
    RiskType accepted = RiskType::unsafe;
  };
  // Its conversions are a part of `conversions_`, in the order of their names.
  struct Class {
    Text name;
    Text sha256;
    std::uint32_t first = 0;
    std::uint32_t count = 0;
  };

  Text keep(std::string_view text);
  std::string_view viewOf(const Text& text) const {
    return std::string_view(texts_).substr(text.start, text.size);
  }

  std::string texts_;
  std::vector<Conversion> conversions_;
  std::vector<Class> classes_;
};

}  // namespace soca
