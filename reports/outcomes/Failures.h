// Converts exceptions of the service to failures of the report.
#pragma once

#include <exception>
#include <string>

#include "files/targets/ClassRoots.h"
#include "platform/failure/Exception.h"
#include "platform/messages/BaseMsgID.h"
#include "platform/paths/SourceReader.h"
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

// The failure of a class that cannot be updated because a file cannot be read; without the class.
Failure describeUnreadable(const fl::filesystem::ReadError& error);

// That of a class whose passes come to no end, or that derives from such a class; without the
// class.
Failure describeUnsettled();

// Describes a failure with the details that the program can find. Reads the files concerned again.
class FailureDescriber {
 public:
  // Both pointers must outlive this object.
  FailureDescriber(const ClassRoots* roots, const FileNames* names, WordsType words)
      : roots_(roots), names_(names), words_(words) {}

  // Describes the current exception, of any type but std::bad_alloc, which is no fault of a class.
  // To be called in its handler.
  Failure describeCurrentException(const FailedCall& call) const;

 private:
  Failure describe(const foundation::core::except::IMsgIDException& exception,
                   const FailedCall& call) const;
  void explain(const resource_core::BaseMsgID& message, const FailedCall& call,
               Failure& failure) const;
  void explainOtherClass(const std::string& argument, Failure& failure) const;
  // Sets the message to the real fault of what the service calls no System object.
  static void correctMessage(const std::string& argument, Failure& failure);
  void explainSyntax(const std::string& path, Failure& failure) const;
  static void explainMisplacedEdit(const FailedCall& call, Failure& failure);
  static void explainOverlap(const FailedCall& call, Failure& failure);

  const ClassRoots* roots_;
  const FileNames* names_;
  WordsType words_;
};

}  // namespace soca
