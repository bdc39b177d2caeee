#include "fuzz/conversions/PlanAttempt.h"

#include <stdexcept>

#include "platform/failure/Exception.h"
#include "platform/text/Conversions.h"
#include "rules/MethodRules.h"
#include "service/UpdatePlan.h"

namespace soca::fuzz {

PlanAttempt attemptPlan(const std::function<PlannedClass()>& plan) {
  PlanAttempt result;
  try {
    result.planned = plan();
    if (result.planned->missingDelimiter) result = {std::nullopt, "missing delimiter"};
  } catch (const foundation::core::except::IMsgIDException& failure) {
    result.failure = failure.GetID();
  } catch (const std::out_of_range&) {
    result.failure = "std::out_of_range";
  }
  return result;
}

PlannedClass planLike(const PlannedClass& planned) {
  const fl::ustring& className = planned.result.className;
  if (!planned.listsFaults) return std::move(planActions(className, planned.mask, false).front());
  return std::move(planUpdate(className, planned.mask, false,
                              {.keepLines = true, .listFaults = true, .isTidy = planned.isTidy})
                       .front());
}

std::string plainId(const std::string& id) {
  const std::size_t name = id.find(':') + 1;
  const bool isNumber = name < id.size() && id[name] >= '0' && id[name] <= '9';
  const std::string plain = id.substr(0, isNumber ? name : id.find('~'));
  // A conversion of a later pass has the name that its method had in the text as it was read.
  const fl::ustring oldName = fl::ustring(oldNameOf(fl::i18n::to_ustring(plain.substr(name))));
  return oldName.empty() ? plain : plain.substr(0, name) + fl::i18n::to_string(oldName);
}

std::vector<std::string> plainIds(const PlannedClass& planned) {
  std::vector<std::string> ids;
  for (const fl::ustring& id : makeConversionIds(*planned.analysis, planned.conversions)) {
    ids.push_back(plainId(fl::i18n::to_string(id)));
  }
  return ids;
}

}  // namespace soca::fuzz
