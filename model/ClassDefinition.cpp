#include "model/ClassDefinition.h"

#include "model/AnalyzerPositions.h"

namespace soca {

ClassDefinition::ClassDefinition(const ca::astapi::Classdef* classdefNode, ClassContext context)
    : classdefNode_(classdefNode), context_(context) {
  gatherBlocks();
  gatherSuperClasses();
  indexNames();
}

void ClassDefinition::gatherBlocks() {
  using lf::astapi::NodeKind;
  // The members point to the blocks, which must not move.
  propertiesBlocks_.reserve(classdefNode_->getPropertiesBlocks().size());
  methodsBlocks_.reserve(classdefNode_->getMethodsBlocks().size());
  members_.reserve(classdefNode_->members.size());
  for (const ca::astapi::Node* node : classdefNode_->members) {
    ClassMember& member = members_.emplace_back(ClassMember{node});
    if (node->kind == NodeKind::PropertiesBlockNode) {
      const auto* block = static_cast<const ca::astapi::PropertiesBlockNode*>(node);
      member.propertiesBlock = &propertiesBlocks_.emplace_back(block, &context_);
    } else if (node->kind == NodeKind::MethodsBlockNode) {
      const auto* block = static_cast<const ca::astapi::MethodsBlockNode*>(node);
      member.methodsBlock = &methodsBlocks_.emplace_back(block, &context_);
    }
  }
}

void ClassDefinition::gatherSuperClasses() {
  superClasses_.reserve(classdefNode_->superClasses.size());
  for (const ca::astapi::Identifier* name : classdefNode_->superClasses) {
    const std::size_t length = name->text.view().size();
    superClasses_.push_back(
        {name->id.getString(), makeExtentOfToken(*context_.analysis, name->position, length)});
  }
}

void ClassDefinition::indexNames() {
  for (const PropertiesBlock& block : propertiesBlocks_) propertyNames_.add(block.getProperties());
  for (const MethodsBlock& block : methodsBlocks_) methodNames_.add(block.getMethods());
  propertyNames_.finish();
  methodNames_.finish();
}

const Property* ClassDefinition::findProperty(const fl::ustring& name) const {
  return propertyNames_.find(name);
}

const Method* ClassDefinition::findMethod(const fl::ustring& name) const {
  return methodNames_.find(name);
}

bool ClassDefinition::isStrictDefaultsClass() const {
  return context_.metaClass->isStrictDefaultsClass();
}

bool ClassDefinition::isMethodDefinedInSuperClass(const fl::ustring& name) const {
  return context_.metaClass->isMethodDefinedInSuperClass(name);
}

}  // namespace soca
