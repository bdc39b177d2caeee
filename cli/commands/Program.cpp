#include "cli/commands/Program.h"

#include <fmt/core.h>

#include <exception>

#include "cli/commands/Help.h"
#include "cli/commands/ReportRun.h"
#include "cli/commands/SyntaxCheck.h"
#include "cli/commands/Undo.h"
#include "cli/commands/Unresolved.h"
#include "cli/commands/VerifiedUpdate.h"
#include "cli/commands/Version.h"
#include "cli/options/CommandLine.h"
#include "cli/options/OptionTable.h"
#include "cli/options/Options.h"
#include "cli/terminal/Signals.h"
#include "cli/update/StandardInput.h"
#include "files/targets/ClassPath.h"
#include "files/targets/UsageError.h"
#include "reports/FailureText.h"
#include "reports/explanations/Explain.h"
#include "reports/outcomes/InternalErrors.h"

namespace soca::cli {
namespace {

ExitCodeType printText(const std::string& text, Console& console) {
  console.print(text);
  return ExitCodeType::done;
}

ExitCodeType runCommand(const Options& options, Console& console) {
  console.setColor(options.color);
  switch (options.command) {
    case CommandType::help:
      return printText(helpText(options.helpSubject), console);
    case CommandType::version:
      return printText(versionText(), console);
    case CommandType::explain:
      return printText(
          options.arguments.empty() ? explainAll() : explain(options.arguments.front()), console);
    case CommandType::check:
      return runSyntaxCheck(options, console);
    case CommandType::undo:
      return runUndo(options, console);
    case CommandType::update: {
      const ClassRoots roots = setClassPath(options.roots, options.classTable);
      if (!options.stdinPath.empty()) return updateStandardInput(options, roots, console);
      return runVerifiedUpdate(options, roots, console);
    }
    case CommandType::actions:
    case CommandType::classes: {
      const ClassRoots roots = setClassPath(options.roots, options.classTable);
      return options.unresolved ? printUnresolved(options, roots, console)
                                : runReport(options, roots, console);
    }
  }
  return ExitCodeType::failed;
}

}  // namespace

ExitCodeType runProgram(const std::vector<std::string>& arguments, Console& console) {
  catchInterrupts();
  installInternalErrorHandler();
  auto exitCode = ExitCodeType::failed;
  try {
    exitCode = runCommand(parseOptions(arguments), console);
  } catch (const UsageError& error) {
    console.setColor(findColor(arguments));
    console.complain(error.what());
    const bool hasCommand = !arguments.empty() && findCommand(arguments.front()) != nullptr;
    console.printError(
        fmt::format("Try 'soca {}--help'.\n", hasCommand ? arguments.front() + ' ' : ""));
  } catch (const std::exception& error) {
    console.complain(faultText(error));
  }
  if (console.finish() || isOfSignal(exitCode)) return exitCode;
  return wasInterrupted() && console.isReaderGone() ? interruptExitCode() : ExitCodeType::failed;
}

}  // namespace soca::cli
