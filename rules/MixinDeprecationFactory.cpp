#include "rules/MixinDeprecationFactory.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "model/AnalyzedClass.h"
#include "model/ClassDefinition.h"
#include "rules/RuleFamilies.h"

namespace soca {
namespace {

using SuperClasses = std::vector<SuperClassReference>;

constexpr std::array<fl::ustring_view, 5> deprecatedMixins = {
    u"velum.system.mixin.Propagates",          u"velum.system.mixin.SampleTime",
    u"velum.system.mixin.Nondirect",           u"velum.system.mixin.CustomIcon",
    u"velum.system.mixin.internal.CustomIcon",
};

constexpr fl::ustring_view systemBase = u"velum.System";

// Replaces the superclass list. The list breaks before a name that would reach the limit:
//
//   velum.System & first.pkg.name.BaseClassOne & ...
//           second.pkg.BaseClassTwo
class RewriteSuperClasses : public SingleAction {
 public:
  RewriteSuperClasses(const SuperClassReference* firstSuperClass,
                      const SuperClassReference* lastSuperClass,
                      std::vector<fl::ustring> superClassNames)
      : firstSuperClass_(firstSuperClass),
        lastSuperClass_(lastSuperClass),
        superClassNames_(std::move(superClassNames)) {}

  Extent getExtent() const override {
    return {firstSuperClass_->extent.start, lastSuperClass_->extent.end};
  }

  fl::ustring getText() const override {
    fl::ustring text;
    std::uint64_t column = firstSuperClass_->extent.start.column;
    const fl::ustring* previous = nullptr;
    for (const fl::ustring& name : superClassNames_) {
      if (previous != nullptr) {
        text += separator;
        column += previous->size() + separator.size();
        if (column + name.size() >= lineLimit) column = breakLine(text);
      }
      text += name;
      previous = &name;
    }
    return text;
  }

 private:
  static constexpr fl::ustring_view separator = u" & ";
  static constexpr std::uint64_t lineLimit = 77;
  static constexpr std::uint64_t indentation = 8;

  // Returns the column at which the new line continues.
  static std::uint64_t breakLine(fl::ustring& text) {
    text += u"...\n";
    text.append(indentation, u' ');
    return indentation;
  }

  const SuperClassReference* firstSuperClass_;
  const SuperClassReference* lastSuperClass_;
  std::vector<fl::ustring> superClassNames_;
};

bool isDeprecated(const SuperClassReference& superClass) {
  return std::ranges::find(deprecatedMixins, superClass.name) != deprecatedMixins.end();
}

// Whether the class is a System object only because of the deprecated mixins.
bool needsSystemBase(const SuperClasses& superClasses, const MetaDataInterface& metaData) {
  return std::ranges::none_of(superClasses, [&](const SuperClassReference& superClass) {
    return !isDeprecated(superClass) && metaData.getMetaClass(superClass.name)->isSystemObject();
  });
}

}  // namespace

std::vector<fl::ustring> newSuperClassNames(const SuperClasses& superClasses,
                                            const MetaDataInterface& metaData) {
  bool isSystemBaseNeeded = needsSystemBase(superClasses, metaData);
  std::vector<fl::ustring> names;
  for (const SuperClassReference& superClass : superClasses) {
    if (!isDeprecated(superClass)) {
      names.push_back(superClass.name);
    } else {
      names.emplace_back(std::exchange(isSystemBaseNeeded, false) ? systemBase
                                                                  : fl::ustring_view());
    }
  }
  return names;
}

std::unique_ptr<AbstractActionFactory> makeMixinDeprecationFactory(MetaDataInterface* metaData) {
  return std::make_unique<MixinDeprecationFactory>(metaData);
}

RuleResult MixinDeprecationFactory::createActions(const AnalyzedClass& analyzedClass,
                                                  const ConversionChoice& choice) const {
  const SuperClasses& superClasses = analyzedClass.definition->getSuperClasses();
  RuleResult result;
  if (std::ranges::none_of(superClasses, isDeprecated)) return result;
  const std::size_t conversion = result.addConversion({.kind = ConversionKindType::mixins});
  if (!choice.isMade(conversion)) return result;
  auto names = newSuperClassNames(superClasses, *metaData_);
  std::erase(names, fl::ustring());
  result.addAction(std::make_unique<RewriteSuperClasses>(&superClasses.front(),
                                                         &superClasses.back(), std::move(names)),
                   conversion);
  return result;
}

}  // namespace soca
