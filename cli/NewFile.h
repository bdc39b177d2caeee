// The new bytes of a class file, and whether they can take the place of the old ones.
#pragma once

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/UString.h"

namespace soca::cli {

// A fault of one class that the program itself finds; `what` is the message.
class ClassFault : public std::runtime_error {
 public:
  ClassFault(std::string_view id, std::initializer_list<std::string_view> arguments);

  const std::string& id() const { return id_; }

 private:
  std::string id_;
};

struct NewFile {
  std::string oldBytes;
  std::string newBytes;
  // Of the file with the old bytes.
  fl::filesystem::FileStamp stamp;
};

// Whether the stamp has to show any later change of the file: then it may have to wait until the
// clock has gone on.
enum class StampType { any, sure };

// Reads the file again for its encoding. Throws ClassFault if it no longer has the text that was
// analysed, if its encoding lacks characters of the new text, or if it can't be replaced.
NewFile makeNewFile(const std::string& path, const ca::AnalysisResult& analysis,
                    fl::ustring_view newText, StampType stampType);

}  // namespace soca::cli
