#include "metadata/VELUMMetaClass.h"

#include <memory>

#include "diagnostics/Messages.h"
#include "diagnostics/RaiseErrMsgId.h"
#include "platform/paths/ClassPathItem.h"
#include "platform/paths/Iri.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/PathDispatcher.h"
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

fl::ustring nativePathOf(const ClassPathItem& item) {
  const foundation::storage::vfs::CanonicalAbsoluteIRI iri(item.base, item.folder + item.file);
  const fl::ustring& path = iri.getPath();
  return path.empty() ? path : fl::filesystem::detail::make_native_form(path, true);
}

}  // namespace

VELUMMetaClass::VELUMMetaClass(const fl::ustring& className)
    : className_(fl::i18n::to_string(className)) {
  const tarn::COSInterfacePtr pointer = tarn::COSClass::getClassInterface(idOfClass(className_));
  const tarn::ClassObject* classObject = tarn::COSClassPtrHelper::getObject(pointer);
  if (classObject == nullptr || !derivesFromSystemBase(*classObject)) return;
  systemObject_ = true;
  metaClass_ = sotarn::MetaClass::fromID(classObject->getID());
}

bool VELUMMetaClass::isSystemObject() const { return systemObject_; }

std::vector<fl::ustring> VELUMMetaClass::getSuperClassNames() const {
  std::vector<fl::ustring> names;
  for (const sotarn::MetaClass& superClass : metaClass_.getSuperClasses()) {
    names.push_back(fl::i18n::to_ustring(superClass.getName()));
  }
  return names;
}

ConstrainedSetInfo VELUMMetaClass::getConstrainedSetInfo(const fl::ustring& propertyName) const {
  const auto property = metaClass_.getProperty(fl::i18n::to_string(propertyName));
  return property.isConstrainedSetTarget() ? property.getConstrainedSetInfo()
                                           : ConstrainedSetInfo();
}

fl::ustring VELUMMetaClass::getClassFile() const {
  const std::shared_ptr<ClassPathItem> item =
      omGetMatchingClassPathItem(PathDispatcher::getDispatcher(), fl::i18n::to_ustring(className_));
  if (item == nullptr) raiseErrMsgId(analyzerMessages::NoFileForClass(className_));
  const fl::ustring path = nativePathOf(*item);
  if (fl::filesystem::detail::extract_extension(path) != pFileExtension) return path;
  raiseErrMsgId(analyzerMessages::PFileExists(
      fl::filesystem::detail::replace_extension(path, fl::ustring(sourceExtension))));
}

bool VELUMMetaClass::isAbstractInAnyClass(const fl::ustring& propertyName) const {
  return metaClass_.getProperty(fl::i18n::to_string(propertyName)).isAbstractInAnyClass();
}

bool VELUMMetaClass::isDependent(const fl::ustring& propertyName) const {
  return metaClass_.getProperty(fl::i18n::to_string(propertyName)).isDependent();
}

bool VELUMMetaClass::isStrictDefaultsClass() const { return metaClass_.isStrictDefaultsClass(); }

bool VELUMMetaClass::isMethodDefinedInSuperClass(const fl::ustring& methodName) const {
  return metaClass_.isMethodDefinedInSuperClass(fl::i18n::to_string(methodName));
}

}  // namespace soca
