// The action that deletes or replaces an entity of the model.
#pragma once

#include <cstdint>
#include <utility>

#include "model/Extent.h"
#include "platform/text/UString.h"
#include "rules/Action.h"

namespace soca {

template <class Entity>
struct GetExtent {
  Extent operator()(const Entity& entity) const { return entity.getFullExtent(); }
};

// Replaces the part of the entity that the policy, a function object without state, selects:
//
//   ReplaceEntity<Property, GetExtent<Property>>(&property, u"", SourceFile::ConsumeListDelimiter)
//
// deletes a property with the terminator after it. The entity must outlive the action.
template <class Entity, class GetExtentPolicy>
class ReplaceEntity : public SingleAction {
 public:
  ReplaceEntity(const Entity* entity, fl::ustring text, std::uint64_t delimiterFlags)
      : entity_(entity), text_(std::move(text)), delimiterFlags_(delimiterFlags) {}

  Extent getExtent() const override { return GetExtentPolicy()(*entity_); }
  fl::ustring getText() const override { return text_; }
  std::uint64_t getDelimiterFlags() const override { return delimiterFlags_; }

 private:
  const Entity* entity_;
  fl::ustring text_;
  std::uint64_t delimiterFlags_;
};

}  // namespace soca
