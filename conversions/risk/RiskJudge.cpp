#include "conversions/risk/RiskJudge.h"

#include "conversions/risk/DefaultRisks.h"
#include "conversions/risk/DeletedComments.h"
#include "conversions/risk/MethodRisks.h"
#include "conversions/risk/SuperClassRisks.h"

namespace soca {

std::vector<ConversionRisk> judgeRisks(const PlannedClass& planned) {
  std::vector<ConversionRisk> risks(planned.conversions.size());
  if (risks.empty()) return risks;
  // The unsafe ones first.
  judgeSuperClasses(planned, risks);
  judgeDefaults(planned, risks);
  judgeMethods(planned, risks);
  findAddedSystemBase(planned, risks);
  findNegatedCalls(planned, risks);
  findDeletedComments(planned, risks);
  return risks;
}

}  // namespace soca
