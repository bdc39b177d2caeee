// The model of one class file: what the rules read.
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

// One block of the class body. For a block that is neither of properties nor of methods both
// pointers are null.
struct ClassMember {
  const ca::astapi::Node* node = nullptr;
  const PropertiesBlock* propertiesBlock = nullptr;
  const MethodsBlock* methodsBlock = nullptr;
};

// One name behind the `<` of the class line.
struct SuperClassReference {
  // The whole dotted name.
  fl::ustring name;
  Extent extent;

  friend bool operator==(const SuperClassReference&, const SuperClassReference&) = default;
};

// Complete when it is made, and unchanged from then on. The tree, the analysis and the metadata
// must outlive it. It neither copies nor moves, since its blocks point at its context and its
// members at its blocks.
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

  // What the class's metadata says.
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
