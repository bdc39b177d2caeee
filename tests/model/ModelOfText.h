// The model of a class text without a file, with metadata from the test.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "metadata/MetaClass.h"
#include "model/ClassDefinition.h"
#include "platform/analyzer/Analyzer.h"
#include "platform/text/Conversions.h"
#include "platform/text/Locale.h"

namespace soca::testing {

// Returns values from tables.
class FakeMetaClass : public MetaClass {
 public:
  bool isSystemObject() const override { return systemObject; }
  std::vector<fl::ustring> getSuperClassNames() const override { return superClassNames; }
  ConstrainedSetInfo getConstrainedSetInfo(const fl::ustring& name) const override {
    const auto found = sets.find(name);
    return found != sets.end() ? found->second : ConstrainedSetInfo();
  }
  fl::ustring getClassFile() const override { return file; }
  bool isAbstractInAnyClass(const fl::ustring& name) const override {
    return abstractProperties.contains(name);
  }
  bool isDependent(const fl::ustring& name) const override {
    return dependentProperties.contains(name);
  }
  bool isStrictDefaultsClass() const override { return strictDefaults; }
  bool isMethodDefinedInSuperClass(const fl::ustring& name) const override {
    return inheritedMethods.contains(name);
  }

  bool systemObject = true;
  bool strictDefaults = false;
  fl::ustring file = u"/C.vlm";
  std::vector<fl::ustring> superClassNames;
  std::map<fl::ustring, ConstrainedSetInfo> sets;
  std::set<fl::ustring> abstractProperties, dependentProperties, inheritedMethods;
};

struct ModelOfText {
  explicit ModelOfText(const fl::ustring& text) : analysis(ca::analyzeText(text)) {
    EXPECT_FALSE(analysis->hasSyntaxError()) << fl::i18n::to_string(text);
    definition = std::make_unique<ClassDefinition>(analysis->getClassdef(),
                                                   ClassContext{analysis.get(), &metaClass});
  }

  FakeMetaClass metaClass;
  std::shared_ptr<ca::AnalysisResult> analysis;
  std::unique_ptr<ClassDefinition> definition;
};

// The printed form of a value, in UTF-8.
template <class Value>
std::string printed(const Value& value) {
  std::basic_ostringstream<char16_t> out;
  out.imbue(fl::i18n::facet::get_global_std_locale());
  out << value;
  return fl::i18n::to_string(out.str());
}

// The columns of an extent on one line, as "4-9"; for several lines the whole extent.
inline std::string columnsOf(const Extent& extent) {
  if (extent.start.line != extent.end.line) return printed(extent);
  return std::to_string(extent.start.column) + "-" + std::to_string(extent.end.column);
}

}  // namespace soca::testing
