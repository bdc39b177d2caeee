#include "fuzz/Targets.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include "fuzz/AnalysisProperties.h"
#include "fuzz/ClassFiles.h"
#include "fuzz/EditProperties.h"
#include "fuzz/UpdateProperties.h"
#include "fuzz/Violation.h"
#include "fuzz/changes/ChangeProperties.h"
#include "platform/runtime/ClassTable.h"
#include "platform/text/FileText.h"

namespace soca::fuzz {
namespace {

// During its life, the table is the process's class table; a text that is no table is ignored.
class ClassTableScope {
 public:
  explicit ClassTableScope(std::string_view json) {
    try {
      auto table = std::make_shared<sotarn::ClassTable>(sotarn::parseClassTable(json));
      sotarn::setClassTable(std::move(table));
    } catch (const sotarn::ClassTableError& error) {
      require(!std::string_view(error.what()).empty(), "a class table is refused without a word");
    }
  }
  ~ClassTableScope() { sotarn::setClassTable(nullptr); }
  ClassTableScope(const ClassTableScope&) = delete;
  ClassTableScope& operator=(const ClassTableScope&) = delete;
};

}  // namespace

void fuzzAnalysis(std::string_view bytes) {
  const fl::DecodedText decoded = fl::decodeFileText(bytes);
  const auto encoded = fl::encodeFileText(decoded.text, decoded.encoding);
  require(encoded == bytes, "the bytes do not come back");
  analyzeChecked(decoded.text);
}

void fuzzUpdate(std::string_view bytes) {
  std::vector<ClassFile> files = readClassFiles(bytes);
  const auto table = std::ranges::find(files, "table.json", &ClassFile::className);
  if (table == files.end()) {
    checkUpdate(files);
    return;
  }
  const auto json = fl::encodeFileText(table->text, fl::EncodingType::utf8);
  const ClassTableScope scope(json.value_or(""));
  files.erase(table);
  checkUpdate(files);
}

void fuzzEdits(std::string_view bytes) {
  // Each edit takes six bytes.
  constexpr std::size_t editSize = 6;
  const std::size_t count = bytes.empty() ? 0 : std::min<std::size_t>(bytes.back() & 7, 7);
  const std::size_t editBytes = std::min(bytes.size(), 1 + count * editSize);
  const fl::ustring text = fl::decodeFileText(bytes.substr(0, bytes.size() - editBytes)).text;
  std::string_view rest = bytes.substr(bytes.size() - editBytes);
  std::uint64_t seed = 0;
  for (const unsigned char byte : rest) seed = seed * 31 + byte;
  std::vector<RawEdit> edits;
  while (rest.size() > editSize) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(rest[index]); };
    edits.push_back({byte(0), byte(1), byte(2), byte(3), byte(4), byte(5)});
    rest.remove_prefix(editSize);
  }
  checkEdits(text, edits);
  checkChanges(text, seed);
}

void fuzzClassTable(std::string_view bytes) {
  const ClassTableScope scope(bytes);
  checkUpdate({{"a.B",
                u"classdef B < pkg.Base\n"
                u"properties (Logical)\nFlag = true;\nend\n"
                u"properties\nMode = 'a';\nForm\nModeSet = velum.system.StringSet({'a'});\n"
                u"FormSet = velum.system.StringSet([\"b\"]);\nend\n"
                u"methods (Access = protected)\n"
                u"function flag = isInputSizeMutableImpl(~, ~)\nflag = false;\nend\n"
                u"function flag = isInputComplexityLockedImpl(~, ~)\nflag = x;\nend\n"
                u"end\nend\n"},
               {"pkg.Base", u"classdef Base < velum.System\nend\n"}});
}

}  // namespace soca::fuzz
