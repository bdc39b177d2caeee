// The class description from the environment's class runtime and path services.
#pragma once

#include <string>
#include <vector>

#include "metadata/MetaClass.h"
#include "platform/runtime/MetaClass.h"
#include "platform/text/UString.h"

namespace soca {

// A System object is a class that derives from one of the two system bases. For any other class the
// runtime is not queried further. Results are not cached. The constructor and all queries raise
// CodeAnalyzerError with the path of a file that the runtime cannot read.
class VELUMMetaClass : public MetaClass {
 public:
  explicit VELUMMetaClass(const fl::ustring& className);
  VELUMMetaClass(const VELUMMetaClass&) = delete;
  VELUMMetaClass& operator=(const VELUMMetaClass&) = delete;

  bool isSystemObject() const override;
  std::vector<fl::ustring> getSuperClassNames() const override;
  ConstrainedSetInfo getConstrainedSetInfo(const fl::ustring& propertyName) const override;
  fl::ustring getClassFile() const override;
  bool isAbstractInAnyClass(const fl::ustring& propertyName) const override;
  bool isDependent(const fl::ustring& propertyName) const override;
  bool isStrictDefaultsClass() const override;
  bool isMethodDefinedInSuperClass(const fl::ustring& methodName) const override;

 private:
  sotarn::MetaProperty propertyOf(const fl::ustring& name) const;

  bool systemObject_ = false;
  // Dotted, in UTF-8, as the runtime spells it.
  std::string className_;
  // Refers to no class unless this class is a System object.
  sotarn::MetaClass metaClass_;
};

}  // namespace soca
