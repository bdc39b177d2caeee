#include "fuzz/conversions/PlanAttempt.h"

#include <stdexcept>

#include "platform/failure/Exception.h"
#include "platform/text/Conversions.h"

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

std::string plainId(const std::string& id) {
  const std::size_t name = id.find(':') + 1;
  const bool isNumber = name < id.size() && id[name] >= '0' && id[name] <= '9';
  return id.substr(0, isNumber ? name : id.find('~'));
}

std::vector<std::string> plainIds(const PlannedClass& planned) {
  std::vector<std::string> ids;
  for (const fl::ustring& id : makeConversionIds(*planned.analysis, planned.conversions)) {
    ids.push_back(plainId(fl::i18n::to_string(id)));
  }
  return ids;
}

}  // namespace soca::fuzz
