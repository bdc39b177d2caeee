// The file with the conversions that a person chose.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "conversions/selection/ChosenIds.h"

namespace soca {

// The version of the form that is read and written.
inline constexpr std::uint64_t selectionVersion = 1;

// A text that is no selection. `what` is the line, and the fault.
class SelectionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The chosen conversions of a text of this form:
//
//   {"version": 1,
//    "classes": [
//     {"class": "a.B", "file": "src/a/B.vlm", "sha256": "9f86...",
//      "conversions": [
//       {"id": "a.B#mixins", "risk": "safe", "line": 1}],
//      "leftOut": [
//       {"id": "a.B#impl/rename:f", "risk": "unsafe", "line": 9,
//        "reason": "soca:StillReferenced", "message": "..."}]}]}
//
// Of a conversion only the id counts, and the risk with which it was accepted; without it, any risk
// is accepted. Throws SelectionError.
ChosenIds parseSelection(std::string_view json);

}  // namespace soca
