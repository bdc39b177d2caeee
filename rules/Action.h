// Edits of a class file that are not yet made.
#pragma once

#include <cstdint>
#include <list>
#include <memory>

#include "model/Extent.h"
#include "platform/text/UString.h"

namespace soca {

// One edit or a group of edits. Points to the model of its class without owning it, and must not
// outlive it. Complete once constructed; its results are computed by each call, refer to the
// unedited text, and are always the same.
class Action {
 public:
  virtual ~Action() = default;

  // The part of the file that the action concerns.
  virtual Extent getExtent() const = 0;
  // Whether this is an ActionGroup; otherwise it is a SingleAction.
  virtual bool isGroup() const = 0;

 protected:
  Action() = default;
  Action(const Action&) = delete;
  Action& operator=(const Action&) = delete;
};

// In the order in which they are to be applied.
using ActionList = std::list<std::unique_ptr<Action>>;

// Edits that belong together and are reported as one. Edits on one line are ordered from right to
// left, because an edit does not move the columns of the later ones. Groups do not nest: a group
// among the children is ignored when actions are applied or printed.
class ActionGroup : public Action {
 public:
  // Moves all actions from `actions`.
  explicit ActionGroup(ActionList&& actions) { actions_.splice(actions_.end(), actions); }

  // From the first start to the last end of the children. The extent of an empty group starts after
  // its end.
  Extent getExtent() const override;
  bool isGroup() const override;
  virtual const ActionList& getActions() const;

 private:
  ActionList actions_;
};

// One replacement.
class SingleAction : public Action {
 public:
  bool isGroup() const override;
  // The replacement of the extent; the empty string deletes it.
  virtual fl::ustring getText() const = 0;
  // Options of SourceFile::replace: the delimiters after the extent that the edit also replaces. 0
  // if not overridden.
  virtual std::uint64_t getDelimiterFlags() const;
};

}  // namespace soca
