// The model of one class file, which the rules read.
#pragma once

#include <cstdint>
#include <vector>

#include "model/ClassContext.h"
#include "model/Extent.h"
#include "model/MethodsBlock.h"
#include "model/NameIndex.h"
#include "model/PropertiesBlock.h"
#include "platform/text/UString.h"

namespace soca {

// One block of the class body. Both pointers are null for a block that is neither a properties
// block nor a methods block.
struct ClassMember {
  const ca::astapi::Node* node = nullptr;
  const PropertiesBlock* propertiesBlock = nullptr;
  const MethodsBlock* methodsBlock = nullptr;
};

// One name of the superclass list.
struct SuperClassReference {
  // The whole dotted name.
  fl::ustring name;
  Extent extent;

  friend bool operator==(const SuperClassReference&, const SuperClassReference&) = default;
};

// Complete once constructed, and never modified. The tree, the analysis and the metadata must
// outlive it. It is neither copied nor moved, because its blocks point to its context and its
// members to its blocks.
class ClassDefinition {
 public:
  ClassDefinition(const ca::astapi::Classdef* classdefNode, ClassContext context);
  ClassDefinition(const ClassDefinition&) = delete;
  ClassDefinition& operator=(const ClassDefinition&) = delete;

  // All in source order.
  const std::vector<PropertiesBlock>& getPropertiesBlocks() const { return propertiesBlocks_; }
  const std::vector<MethodsBlock>& getMethodsBlocks() const { return methodsBlocks_; }
  const std::vector<ClassMember>& getMembers() const { return members_; }
  const std::vector<SuperClassReference>& getSuperClasses() const { return superClasses_; }
  std::uint64_t getNumberOfPropertiesBlocks() const { return propertiesBlocks_.size(); }
  std::uint64_t getNumberOfMethodsBlocks() const { return methodsBlocks_.size(); }

  // The first of that exact name in any block, or null.
  const Property* findProperty(const fl::ustring& name) const;
  const Method* findMethod(const fl::ustring& name) const;

  // From the class's metadata.
  bool isStrictDefaultsClass() const;
  bool isMethodDefinedInSuperClass(const fl::ustring& name) const;

 private:
  void gatherBlocks();
  void gatherSuperClasses();
  void indexNames();

  const ca::astapi::Classdef* classdefNode_;
  ClassContext context_;
  std::vector<PropertiesBlock> propertiesBlocks_;
  std::vector<MethodsBlock> methodsBlocks_;
  std::vector<ClassMember> members_;
  std::vector<SuperClassReference> superClasses_;
  NameIndex<Property> propertyNames_;
  NameIndex<Method> methodNames_;
};

}  // namespace soca
