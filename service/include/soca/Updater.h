// The service that a client of the bundle gets: updates one System object class, or reports on it.
// This header needs nothing but the standard library.
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

// The outcome for one class.
struct UpdateResult {
  // As it was given, or as the class below it lists it.
  fl::ustring className;
  // The native path of the class's source file.
  fl::ustring fileName;
  // The whole text of the file: updated if any action was applied, else as it was read.
  fl::ustring text;
  // What could not be converted, or needs a person's attention: finished texts, in order.
  std::vector<fl::ustring> messages;
  // Whether actions were applied, also if the text came out equal to the old one.
  bool updated = false;
};

// No call keeps anything for the next one, writes a file, or catches what its work throws: a
// failure is an exception with a message id, and there are no partial results. Calls may come from
// several threads at once.
class Updater {
 public:
  // Inline, so that a client needs no symbol of the bundle for the type.
  virtual ~Updater() = default;

  // Runs the selected families on `className`, and with `includeSuperclasses` on all its
  // superclasses too, breadth first, each once. One result a class, in the order of visiting;
  // nothing is written.
  virtual std::vector<UpdateResult> update(const fl::ustring& className, const UpdateMask& mask,
                                           bool includeSuperclasses) = 0;

  // The actions that `update` with all families would apply, as a report.
  virtual fl::ustring reportActions(const fl::ustring& className, bool includeSuperclasses) = 0;

  // What is known of the class and of its superclasses, and its properties blocks. A class that is
  // no System object is reported as such.
  virtual fl::ustring reportClass(const fl::ustring& className) = 0;
};

}  // namespace soca
