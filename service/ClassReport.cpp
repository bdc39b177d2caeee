#include "service/ClassReport.h"

#include <array>
#include <sstream>

#include "metadata/VELUMMetaDataInterface.h"
#include "platform/text/Locale.h"
#include "service/ClassLoader.h"
#include "service/ClassWalk.h"

namespace soca {
namespace {

using Stream = std::basic_ostringstream<char16_t>;

// Indexed by the code of the kind; 0 is no set.
constexpr std::array<fl::ustring_view, 7> setKindNames = {u"",
                                                          u"StringSet",
                                                          u"StringSetGF",
                                                          u"MessageCatalogSet",
                                                          u"DynamicStringSet",
                                                          u"DataTypeSet",
                                                          u"RoundingMethodSet"};

fl::ustring_view setKindName(std::uint32_t kind) {
  return kind < setKindNames.size() ? setKindNames[kind] : fl::ustring_view(u"None");
}

fl::ustring_view wordOf(bool value) { return value ? u"true" : u"false"; }

void printAttributes(Stream& out, const PropertiesBlock& block) {
  const auto has = [&](PropertyAttributeType type) {
    return wordOf(block.hasLogicalAttribute(type));
  };
  out << u"Logical: " << has(PropertyAttributeType::Logical) << u'\n';
  out << u"PositiveInteger: " << has(PropertyAttributeType::PositiveInteger) << u'\n';
}

void printExtents(Stream& out, const PropertiesBlock& block) {
  out << u"Full extent: " << block.getFullExtent() << u'\n';
  out << u"Opening extent: " << block.getOpeningExtent() << u'\n';
  out << u"Closing extent: " << block.getClosingExtent() << u'\n';
}

void printComparison(Stream& out, const PropertiesBlock& block, const PropertiesBlock& previous) {
  out << u"Same logical attributes as previous block: "
      << wordOf(block.hasSameLogicalAttributes(previous.getLogicalAttributes())) << u'\n';
  out << u"Same access as previous block: " << wordOf(block.hasSameAccess(previous.getAccess()))
      << u'\n';
}

void printProperty(Stream& out, const Property& property, const MetaClass& metaClass) {
  out << u"  " << property.nameView() << u' ' << property.getFullExtent();
  const ConstrainedSetInfo set = metaClass.getConstrainedSetInfo(property.getName());
  if (set.kind != 0) out << u' ' << setKindName(set.kind) << u": " << set.setPropertyName;
  out << u'\n';
}

// `previous` is null for the first block of a class.
void printBlock(Stream& out, const PropertiesBlock& block, const PropertiesBlock* previous,
                const MetaClass& metaClass) {
  out << u'\n' << block.getNumberOfProperties() << u" properties\n";
  printAttributes(out, block);
  printExtents(out, block);
  if (previous != nullptr) printComparison(out, block, *previous);
  out << u"Properties:\n";
  for (const Property& property : block.getProperties()) printProperty(out, property, metaClass);
  out << u'\n';
}

void printModel(Stream& out, const AnalyzedClass& analyzedClass) {
  out << analyzedClass.definition->getNumberOfPropertiesBlocks() << u" property blocks\n";
  const PropertiesBlock* previous = nullptr;
  for (const PropertiesBlock& block : analyzedClass.definition->getPropertiesBlocks()) {
    printBlock(out, block, previous, *analyzedClass.metaClass);
    previous = &block;
  }
}

void printSuperClasses(Stream& out, const std::vector<fl::ustring>& names) {
  out << u"Superclasses: ";
  if (names.empty()) out << u"None";
  for (const fl::ustring& name : names) out << u' ' << name;
  out << u'\n';
}

}  // namespace

fl::ustring formatClassReport(const fl::ustring& className) {
  Stream out;
  out.imbue(fl::i18n::facet::get_global_std_locale());
  VELUMMetaDataInterface metaData;
  ClassWalk walk(className);
  while (!walk.isDone()) {
    const fl::ustring name = walk.next();
    const auto metaClass = metaData.getMetaClass(name);
    out << u"CLASS: " << name << u'\n';
    out << (metaClass->isSystemObject() ? u"System object" : u"NOT a System object") << u'\n';
    const auto superClassNames = metaClass->getSuperClassNames();
    printSuperClasses(out, superClassNames);
    walk.add(superClassNames);
    // For every class in the walk, this prints the model of the class named in the call.
    if (metaClass->isSystemObject()) printModel(out, *ClassLoader{className, &metaData}.load());
    out << u'\n';
  }
  return out.str();
}

}  // namespace soca
