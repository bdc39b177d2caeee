// The service that a client of the bundle receives: updates one System object class, or reports on
// it. This header needs only the standard library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fl {

// A string of UTF-16 code units.
using ustring = std::u16string;

}  // namespace fl

namespace soca {

// Which rule families run; further bits are ignored. 7 selects all.
//   1  mixin superclasses
//   2  custom attributes of properties, with their StringSet companions
//   4  *Impl methods
using UpdateMask = std::uint64_t;

// The result for one class.
struct UpdateResult {
  // As given to the call, or as the subclass lists it.
  fl::ustring className;
  // The native path of the class's source file.
  fl::ustring fileName;
  // The whole text of the file: updated if any action was applied, otherwise as it was read.
  fl::ustring text;
  // What could not be converted, or needs a person's attention: finished texts, in order.
  std::vector<fl::ustring> messages;
  // Whether actions were applied, even if the text did not change.
  bool updated = false;
};

// Calls keep no state, write no file, and catch no exception: a failure is an exception with a
// message id, and there are no partial results. The service may be called from several threads at
// once.
class Updater {
 public:
  // Inline, so that a client needs no symbol of the bundle for the type.
  virtual ~Updater() = default;

  // Runs the selected families on `className`, and with `includeSuperclasses` on all its
  // superclasses, breadth first, each once. Returns one result for each class in that order; writes
  // no file.
  virtual std::vector<UpdateResult> update(const fl::ustring& className, const UpdateMask& mask,
                                           bool includeSuperclasses) = 0;

  // A report of the actions that `update` with all families would apply.
  virtual fl::ustring reportActions(const fl::ustring& className, bool includeSuperclasses) = 0;

  // A report of the facts about the class and its superclasses, with its properties blocks. A class
  // that is no System object is reported as such.
  virtual fl::ustring reportClass(const fl::ustring& className) = 0;
};

}  // namespace soca
