#include "metadata/VELUMMetaClass.h"

#include <memory>

#include "diagnostics/Messages.h"
#include "diagnostics/RaiseErrMsgId.h"
#include "platform/paths/ClassPathItem.h"
#include "platform/paths/Iri.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/Class.h"
#include "platform/runtime/InternedId.h"
#include "platform/text/Conversions.h"

namespace soca {
namespace {

namespace analyzerMessages = VELUM::system::Analyzer;

constexpr fl::ustring_view pFileExtension = u"p";
constexpr fl::ustring_view sourceExtension = u"vlm";

tarn::InternedId idOfClass(const std::string& className) {
  if (className.empty()) return tarn::internal::nullValue;
  return tarn::internal::makeInterned(className);
}

// Whether the class derives from one of the system bases.
bool derivesFromSystemBase(const tarn::ClassObject& classObject) {
  return classObject.isDerivedFrom(tarn::internal::makeInterned("velum.system.coder.System")) ||
         classObject.isDerivedFrom(tarn::internal::makeInterned("velum.system.SystemImpl"));
}

// A class that the runtime cannot read is a failure of every class whose answers depend on it.
template <class Query>
auto ask(const Query& query) {
  try {
    return query();
  } catch (const fl::filesystem::ReadError& error) {
    raiseErrMsgId(analyzerMessages::CodeAnalyzerError(error.path()));
  }
}

fl::ustring nativePathOf(const ClassPathItem& item) {
  const foundation::storage::vfs::CanonicalAbsoluteIRI iri(item.base, item.folder + item.file);
  const fl::ustring& path = iri.getPath();
  return path.empty() ? path : fl::filesystem::detail::make_native_form(path, true);
}

}  // namespace

VELUMMetaClass::VELUMMetaClass(const fl::ustring& className)
    : className_(fl::i18n::to_string(className)) {
  ask([this] {
    const tarn::COSInterfacePtr pointer = tarn::COSClass::getClassInterface(idOfClass(className_));
    const tarn::ClassObject* classObject = tarn::COSClassPtrHelper::getObject(pointer);
    if (classObject == nullptr || !derivesFromSystemBase(*classObject)) return;
    systemObject_ = true;
    metaClass_ = sotarn::MetaClass::fromID(classObject->getID());
  });
}

bool VELUMMetaClass::isSystemObject() const { return systemObject_; }

std::vector<fl::ustring> VELUMMetaClass::getSuperClassNames() const {
  std::vector<fl::ustring> names;
  for (const sotarn::MetaClass& superClass : ask([this] { return metaClass_.getSuperClasses(); })) {
    names.push_back(fl::i18n::to_ustring(superClass.getName()));
  }
  return names;
}

ConstrainedSetInfo VELUMMetaClass::getConstrainedSetInfo(const fl::ustring& propertyName) const {
  const auto property = propertyOf(propertyName);
  return property.isConstrainedSetTarget() ? property.getConstrainedSetInfo()
                                           : ConstrainedSetInfo();
}

fl::ustring VELUMMetaClass::getClassFile() const {
  const std::shared_ptr<ClassPathItem> item = ask([this] {
    return omGetMatchingClassPathItem(PathDispatcher::getDispatcher(),
                                      fl::i18n::to_ustring(className_));
  });
  if (item == nullptr) raiseErrMsgId(analyzerMessages::NoFileForClass(className_));
  const fl::ustring path = nativePathOf(*item);
  if (fl::filesystem::detail::extract_extension(path) != pFileExtension) return path;
  raiseErrMsgId(analyzerMessages::PFileExists(
      fl::filesystem::detail::replace_extension(path, fl::ustring(sourceExtension))));
}

bool VELUMMetaClass::isAbstractInAnyClass(const fl::ustring& propertyName) const {
  return ask([&] { return propertyOf(propertyName).isAbstractInAnyClass(); });
}

bool VELUMMetaClass::isDependent(const fl::ustring& propertyName) const {
  return ask([&] { return propertyOf(propertyName).isDependent(); });
}

bool VELUMMetaClass::isStrictDefaultsClass() const {
  return ask([this] { return metaClass_.isStrictDefaultsClass(); });
}

bool VELUMMetaClass::isMethodDefinedInSuperClass(const fl::ustring& methodName) const {
  return ask(
      [&] { return metaClass_.isMethodDefinedInSuperClass(fl::i18n::to_string(methodName)); });
}

sotarn::MetaProperty VELUMMetaClass::propertyOf(const fl::ustring& name) const {
  return ask([&] { return metaClass_.getProperty(fl::i18n::to_string(name)); });
}

}  // namespace soca
