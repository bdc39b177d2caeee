// Calls one updater from many threads, on overlapping sets of classes, and compares the results
// with those of a single thread:
//   many_threads [--threads N] [--seeds N] [--seconds S]
#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/ToolOptions.h"
#include "fuzz/RandomClass.h"
#include "platform/failure/Exception.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "service/UpdaterImpl.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::fuzz {
namespace {

// The results of the three operations for a class, or the failures.
fl::ustring answerOf(Updater& updater, const fl::ustring& className) {
  fl::ustring answer;
  for (const bool includeSuperclasses : {false, true}) {
    try {
      for (const UpdateResult& result : updater.update(className, 7, includeSuperclasses)) {
        answer += result.className + u'\n' + result.fileName + u'\n' + result.text;
        for (const fl::ustring& message : result.messages) answer += message + u'\n';
      }
      answer += updater.reportActions(className, includeSuperclasses);
    } catch (const foundation::core::except::IMsgIDException& failure) {
      answer += failure.GetUnicodeMessageTxt();
    } catch (const std::out_of_range&) {
      answer += u"out of range";
    }
  }
  return answer + updater.reportClass(className);
}

struct Question {
  fl::ustring className;
  fl::ustring answer;
};

// The classes of the seeds, written as files to the folder.
std::vector<fl::ustring> writeClasses(const testing::Workspace& space, std::uint64_t seeds) {
  std::vector<fl::ustring> names;
  for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
    for (const RandomClass& each : makeRandomClasses(seed, fmt::format("_{}", seed))) {
      std::string path = each.file.className;
      std::ranges::replace(path, '.', '/');
      space.write(path + ".vlm", fl::i18n::to_string(each.file.text));
      names.push_back(fl::i18n::to_ustring(each.file.className));
    }
  }
  return names;
}

// Repeats all calls on each thread, each thread beginning at another class.
bool askFromManyThreads(const std::vector<Question>& questions, std::size_t threads,
                        double seconds) {
  UpdaterImpl updater;
  std::atomic<std::size_t> asked = 0;
  std::atomic<std::size_t> wrong = 0;
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  const auto ask = [&](std::size_t first) {
    std::size_t at = first;
    do {
      const Question& question = questions[at++ % questions.size()];
      ++asked;
      if (answerOf(updater, question.className) != question.answer) ++wrong;
    } while (at < first + questions.size() || std::chrono::steady_clock::now() < end);
  };
  std::vector<std::jthread> running;
  for (std::size_t thread = 0; thread < threads; ++thread) {
    running.emplace_back(ask, thread * questions.size() / threads);
  }
  running.clear();
  fmt::print("{} threads, {} classes, {} questions, {} wrong answers\n", threads, questions.size(),
             asked.load(), wrong.load());
  return wrong == 0;
}

}  // namespace
}  // namespace soca::fuzz

int main(int argc, char** argv) try {
  std::size_t threads = 16;
  std::uint64_t seeds = 30;
  double seconds = 0;
  const auto exitCode = bench::parseToolOptions(
      "Calls one updater from many threads",
      {{"--threads", "How many threads", &threads},
       {"--seeds", "How many classes, with those that they need", &seeds},
       {"--seconds", "How long, but each class once in any case", &seconds}},
      argc, argv);
  if (exitCode) return *exitCode;
  const soca::testing::Workspace space;
  PathDispatcher::getDispatcher().setClassPath({space.path().string()});
  std::vector<soca::fuzz::Question> questions;
  soca::UpdaterImpl alone;
  for (const fl::ustring& name : soca::fuzz::writeClasses(space, seeds)) {
    questions.push_back({name, soca::fuzz::answerOf(alone, name)});
  }
  return soca::fuzz::askFromManyThreads(questions, threads, seconds) ? 0 : 1;
} catch (const std::exception& error) {
  fmt::print(stderr, "many_threads: {}\n", error.what());
  return 1;
}
