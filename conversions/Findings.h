// The messages of an update with the ids and places that their finished texts do not have.
#pragma once

#include <unordered_map>
#include <vector>

#include "conversions/Finding.h"
#include "platform/messages/BaseMsgID.h"
#include "platform/messages/MessageListener.h"
#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// During its life, receives the messages of which this thread makes texts.
class FindingsListener {
 public:
  FindingsListener();

  // The messages of the class, in their order.
  std::vector<Finding> findingsOf(const PlannedClass& planned, FindingPlacesType places) const;

 private:
  std::unordered_map<fl::ustring, resource_core::BaseMsgID> messages_;
  fl::i18n::MessageListener listener_;
};

}  // namespace soca
