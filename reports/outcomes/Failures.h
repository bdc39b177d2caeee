// From an exception of the service to what the program says of it.
#pragma once

#include <exception>
#include <string>

#include "files/targets/ClassRoots.h"
#include "platform/failure/Exception.h"
#include "platform/messages/BaseMsgID.h"
#include "reports/outcomes/Outcome.h"
#include "reports/text/FileNames.h"
#include "rules/RuleFamilies.h"
#include "soca/Updater.h"

namespace soca {

// The call that failed.
struct FailedCall {
  // In UTF-8.
  std::string className;
  UpdateMask rules = allFamilies;
  bool includeSuperclasses = false;
};

// What the failure says, with what the program can find out about it besides. Reads the files in
// question again.
class FailureDescriber {
 public:
  // Both must outlive this object.
  FailureDescriber(const ClassRoots* roots, const FileNames* names)
      : roots_(roots), names_(names) {}

  // To be called in the handler of any exception, which it describes.
  Failure describeCurrentException(const FailedCall& call) const;

 private:
  Failure describe(const foundation::core::except::IMsgIDException& exception,
                   const FailedCall& call) const;
  void explain(const resource_core::BaseMsgID& message, const FailedCall& call,
               Failure& failure) const;
  void explainOtherClass(const std::string& argument, Failure& failure) const;
  void explainSyntax(const std::string& path, Failure& failure) const;
  static void explainMisplacedEdit(const FailedCall& call, Failure& failure);
  static void explainOverlap(const FailedCall& call, Failure& failure);

  const ClassRoots* roots_;
  const FileNames* names_;
};

}  // namespace soca
