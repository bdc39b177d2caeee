// A class path of overlay texts.
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

// During its life, the files are the class path of this thread. Only one at a time; the class path
// of the process is set to a folder that does not exist.
class ClassFilesScope {
 public:
  explicit ClassFilesScope(const std::vector<ClassFile>& files);

  // Replaces the text of the class.
  void replace(const std::string& className, const fl::ustring& text);

  // The native path of the class's text.
  static std::string pathOf(const std::string& className);

 private:
  std::vector<std::unique_ptr<fl::filesystem::OverlayScope>> overlays_;
};

// The files in the bytes of a fuzzer: the text of class C, or, if the first byte is U+001E, texts
// that each begin with U+001E, the class's name and a line end.
std::vector<ClassFile> readClassFiles(std::string_view bytes);
// The bytes from which `readClassFiles` returns the files.
std::string writeClassFiles(const std::vector<ClassFile>& files);

}  // namespace soca::fuzz
