#include "cli/commands/VerifiedUpdate.h"

#include <fmt/core.h>

#include <exception>
#include <string>

#include "cli/commands/Undo.h"
#include "cli/terminal/ShellCommand.h"
#include "cli/terminal/Signals.h"
#include "cli/update/UpdateRun.h"
#include "reports/FailureText.h"

namespace soca::cli {
namespace {

ExitCodeType undo(RunNumber run, const Options& options, Console& console) {
  Options request;
  request.command = CommandType::undo;
  request.arguments = {std::to_string(run)};
  request.verbose = options.verbose;
  try {
    return runUndo(request, console);
  } catch (const std::exception& error) {
    console.complain(faultText(error));
    console.tell(fmt::format("'soca undo {}' tries again to put the files back", run));
    return ExitCodeType::failed;
  }
}

CommandResult runCommand(RunNumber run, const Options& options, Console& console) {
  // What was interrupted while it was written is not worth a test.
  if (const auto interrupt = takeInterrupt()) {
    catchInterrupts();
    return {"is not run", interrupt};
  }
  if (!options.quiet) console.tell(fmt::format("run {} is verified by '{}'", run, options.verify));
  console.flush();
  return runInShell(options.verify, options.format->isForPeople ? CommandOutputType::standardOutput
                                                                : CommandOutputType::standardError);
}

ExitCodeType verify(RunNumber run, ExitCodeType updated, const Options& options, Console& console) {
  const CommandResult result = runCommand(run, options, console);
  if (result.failure.empty() && !result.interrupt) return updated;
  console.complain(result.interrupt ? fmt::format("interrupted; run {} is undone", run)
                                    : fmt::format("'{}' {}; run {} is undone", options.verify,
                                                  result.failure, run));
  const ExitCodeType undone = undo(run, options, console);
  if (result.interrupt) return exitCodeOf(*result.interrupt);
  return isOfSignal(undone) ? undone : ExitCodeType::failed;
}

}  // namespace

ExitCodeType runVerifiedUpdate(const Options& options, const ClassRoots& roots, Console& console) {
  RunNumber run = 0;
  auto exitCode = ExitCodeType::failed;
  {
    // It must hold nothing while the command runs, which may use all memory for itself.
    UpdateRun update(&options, &roots, &console);
    exitCode = update.run();
    run = update.writtenRun();
  }
  if (options.verify.empty()) return exitCode;
  if (run != 0) return verify(run, exitCode, options, console);
  if (!options.quiet) {
    console.tell(fmt::format("note: nothing was written, so '{}' is not run", options.verify));
  }
  return exitCode;
}

}  // namespace soca::cli
