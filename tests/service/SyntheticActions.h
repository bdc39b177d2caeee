// Actions without a model.
#pragma once

#include <list>
#include <memory>
#include <utility>
#include <vector>

#include "model/Extent.h"
#include "platform/text/UString.h"
#include "rules/AbstractActionFactory.h"
#include "rules/Action.h"
#include "rules/ReplaceEntity.h"

namespace soca::testing {

struct PlainEdit {
  Extent extent;
  fl::ustring text = {};
  std::uint64_t delimiterFlags = 0;

  Extent getFullExtent() const { return extent; }
};

// Owns its entity, unlike the actions of the rules.
class PlainAction : private PlainEdit, public ReplaceEntity<PlainEdit, GetExtent<PlainEdit>> {
 public:
  explicit PlainAction(const PlainEdit& edit)
      : PlainEdit(edit), ReplaceEntity(this, edit.text, edit.delimiterFlags) {}
};

inline std::unique_ptr<Action> edit(const PlainEdit& plain) {
  return std::make_unique<PlainAction>(plain);
}

// A group of the actions, in their order.
template <class... Actions>
std::unique_ptr<Action> group(Actions... actions) {
  ActionList list;
  (list.push_back(std::move(actions)), ...);
  return std::make_unique<ActionGroup>(std::move(list));
}

template <class... Actions>
ActionList listOf(Actions... actions) {
  ActionList list;
  (list.push_back(std::move(actions)), ...);
  return list;
}

}  // namespace soca::testing
