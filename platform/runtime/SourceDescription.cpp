#include "platform/runtime/SourceDescription.h"

#include "platform/runtime/ConstrainedSets.h"
#include "platform/text/Conversions.h"

namespace sotarn {

namespace {

using ca::astapi::Attribute;
using lf::astapi::NodeKind;

// Whether the last attribute of that name with a logical value is true.
bool isTrue(const lf::astapi::NodeList<Attribute>& attributes, fl::ustring_view name) {
  bool value = false;
  for (const Attribute* attribute : attributes) {
    if (attribute->name->text.view() != name) continue;
    if (attribute->isAttributeWithGivenLogicalValue(true)) value = true;
    if (attribute->isAttributeWithGivenLogicalValue(false)) value = false;
  }
  return value;
}

void describeProperties(const ca::astapi::PropertiesBlockNode& block,
                        ClassDescription& description) {
  const bool isAbstract = isTrue(block.attributes, u"Abstract");
  const bool isDependent = isTrue(block.attributes, u"Dependent");
  for (const ca::astapi::Node* member : block.members) {
    const auto& property = static_cast<const ca::astapi::PropertyNode&>(*member);
    // The first declaration of a name counts.
    description.properties.try_emplace(
        fl::i18n::to_string(property.name->text.view()),
        PropertyDescription{
            .isAbstract = isAbstract, .isDependent = isDependent, .constrainedSet = {}});
  }
}

void describeMethods(const ca::astapi::Classdef& classdef, ClassDescription& description) {
  for (const ca::astapi::FunctionDeclaration* method : classdef.getMethods()) {
    if (method->kind != NodeKind::FunctionDefinition) continue;
    description.methods.push_back(fl::i18n::to_string(method->name->text.view()));
  }
}

}  // namespace

std::shared_ptr<ClassDescription> describeAnalysis(const ca::AnalysisResult& analysis) {
  auto description = std::make_shared<ClassDescription>();
  const ca::ClassdefHandle classdef = analysis.getClassdef();
  if (classdef == nullptr) return description;
  description->strictDefaults = isTrue(classdef->attributes, u"StrictDefaults");
  for (const ca::astapi::Identifier* superClass : classdef->superClasses) {
    description->superClasses.push_back(fl::i18n::to_string(superClass->text.view()));
  }
  for (const auto* block : classdef->getPropertiesBlocks())
    describeProperties(*block, *description);
  describeMethods(*classdef, *description);
  describeConstrainedSets(*classdef, *description);
  return description;
}

}  // namespace sotarn
