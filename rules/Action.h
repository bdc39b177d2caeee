// Edits of a class file, described but not yet made.
#pragma once

#include <cstdint>
#include <list>
#include <memory>

#include "model/Extent.h"
#include "platform/text/UString.h"

namespace soca {

// One edit or a group of them. Points into the model of its class without owning it, and must not
// outlive it. It is complete when it is made; what it answers is computed anew each time, in terms
// of the unedited text, and is always the same.
class Action {
 public:
  virtual ~Action() = default;

  // The stretch of the file that the action concerns.
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

// Edits that belong together and are reported as one. Edits on one line stand from the rightmost to
// the leftmost, because no edit moves the columns of the next. Groups do not nest: a group among
// the children is passed over by whoever applies or prints them.
class ActionGroup : public Action {
 public:
  // Takes all of `actions` and leaves it empty.
  explicit ActionGroup(ActionList&& actions) { actions_.splice(actions_.end(), actions); }

  // From the first start to the last end of the children. A group of none would start behind its
  // end.
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
  // What is to stand in place of the extent; the empty string deletes it.
  virtual fl::ustring getText() const = 0;
  // Options of SourceFile::replace: what the edit takes along behind its extent. 0 if not
  // overridden.
  virtual std::uint64_t getDelimiterFlags() const;
};

}  // namespace soca
