// The class description that the environment's class runtime and path services give.
#pragma once

#include <string>
#include <vector>

#include "metadata/MetaClass.h"
#include "platform/runtime/MetaClass.h"
#include "platform/text/UString.h"

namespace soca {

// A System object is a class that derives from one of the two system bases. Of any other class
// nothing is asked of the runtime. Nothing but these fields is kept: each answer is a new question.
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
  bool systemObject_ = false;
  // Dotted, in UTF-8, as the runtime spells it.
  std::string className_;
  // Belongs to no class unless this one is a System object.
  sotarn::MetaClass metaClass_;
};

}  // namespace soca
