// The messages of an update with what their finished texts no longer tell: their ids and places.
#pragma once

#include <unordered_map>
#include <vector>

#include "conversions/Finding.h"
#include "platform/messages/BaseMsgID.h"
#include "platform/messages/MessageListener.h"
#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// Hears, while it lives, which messages this thread makes texts of.
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
