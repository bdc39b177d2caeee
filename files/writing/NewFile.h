// The new bytes of a class file, and whether they can take the place of the old ones.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/paths/SourceReader.h"
#include "platform/text/FileText.h"
#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// A fault of one class that the program itself finds: the id of a message, and what fills the
// placeholders of its text.
class ClassFault : public std::runtime_error {
 public:
  ClassFault(const std::string& id, std::vector<std::string> arguments)
      : std::runtime_error(id), arguments_(std::move(arguments)) {}

  std::string id() const { return what(); }
  const std::vector<std::string>& arguments() const { return arguments_; }

 private:
  std::vector<std::string> arguments_;
};

// Whether the stamp has to show any later change of the file: then it may have to wait until the
// clock has gone on.
enum class StampType { any, sure };

// The file as it was when it was analysed. It is read again if its stamp does not show that it has
// the text that was analysed. Throws ClassFault if it no longer has it.
fl::filesystem::FileState stateOfOldFile(const std::string& path, const PlannedClass& planned,
                                         StampType stampType);

// Both throw ClassFault if the encoding lacks characters of the text.
std::string makeBytes(const std::string& path, fl::ustring_view text, fl::EncodingType encoding);
void checkIsEncodable(const std::string& path, fl::ustring_view text, fl::EncodingType encoding);

// Throws ClassFault if the file can't be replaced by another.
void checkIsReplaceable(const std::string& path);

}  // namespace soca
