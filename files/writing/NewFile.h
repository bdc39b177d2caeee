// The new bytes of a class file, and the check whether it can be replaced.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/paths/SourceReader.h"
#include "platform/text/FileText.h"
#include "platform/text/UString.h"

namespace soca {

// A fault of one class that the program itself detects: the id of a message, and the arguments for
// the placeholders of its text.
class ClassFault : public std::runtime_error {
 public:
  ClassFault(const std::string& id, std::vector<std::string> arguments)
      : std::runtime_error(id), arguments_(std::move(arguments)) {}

  std::string id() const { return what(); }
  const std::vector<std::string>& arguments() const { return arguments_; }

 private:
  std::vector<std::string> arguments_;
};

// Whether the stamp must change with any later change of the file; for that the program may have to
// wait for the next tick of the clock.
enum class StampType { any, sure };

// The state of the file when it was analysed. It is read again if its stamp does not prove that it
// still has the analysed text; `analysed` is its state at that time, if that is known. Throws
// ClassFault if it has another text.
fl::filesystem::FileState stateOfOldFile(const std::string& path,
                                         const std::optional<fl::filesystem::FileState>& analysed,
                                         fl::ustring_view analysedText, StampType stampType);

// Both throw ClassFault if the encoding lacks characters of the text.
std::string makeBytes(const std::string& path, fl::ustring_view text, fl::EncodingType encoding);
void checkIsEncodable(const std::string& path, fl::ustring_view text, fl::EncodingType encoding);

// Throws ClassFault if the file cannot be replaced.
void checkIsReplaceable(const std::string& path);

}  // namespace soca
