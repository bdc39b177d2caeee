// A class path of texts that stand in no file.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/paths/Overlay.h"
#include "platform/text/UString.h"

namespace soca::fuzz {

struct ClassFile {
  // Dotted, in UTF-8.
  std::string className;
  fl::ustring text;
};

// While it lives, the files are the class path of this thread. One at a time; the process's class
// path becomes a folder that does not exist.
class ClassFilesScope {
 public:
  explicit ClassFilesScope(const std::vector<ClassFile>& files);

  // Puts `text` in place of what the class had.
  void replace(const std::string& className, const fl::ustring& text);

  // The native path of the class's text.
  static std::string pathOf(const std::string& className);

 private:
  std::vector<std::unique_ptr<fl::filesystem::OverlayScope>> overlays_;
};

// Files out of the bytes that a fuzzer makes: the text of class C, or, when the first byte is
// U+001E, texts that each begin with U+001E, the class's name and a line end.
std::vector<ClassFile> readClassFiles(std::string_view bytes);
// The bytes that `readClassFiles` reads.
std::string writeClassFiles(const std::vector<ClassFile>& files);

}  // namespace soca::fuzz
