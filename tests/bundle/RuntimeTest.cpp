// The bundle in the component runtime.
#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/ServiceReference.h>
#include <gtest/gtest.h>

#include <thread>

#include "platform/failure/Exception.h"
#include "platform/paths/PathDispatcher.h"
#include "rules/RuleFamilies.h"
#include "service/UpdaterImpl.h"
#include "tests/Places.h"
#include "tests/bundle/BundleFile.h"

// The leak checker, if present, crashes when threads of the runtime exit while it reads their
// thread-local memory.
extern "C" const char* __lsan_default_options() {  // NOLINT(bugprone-reserved-identifier)
  return "use_tls=0";
}

namespace {

using soca::allFamilies;
constexpr const char16_t* className = u"sigproc.MovingAverage";

fl::ustring updatedText(soca::Updater& updater) {
  return updater.update(className, allFamilies, false).at(0).text;
}

// A running framework in which the bundle is started.
class RunningBundle {
 public:
  explicit RunningBundle(const char* path)
      : framework_(cppmicroservices::FrameworkFactory().NewFramework()) {
    framework_.Start();
    start(DECLARATIVE_SERVICES);
    bundle_ = start(path);
  }
  ~RunningBundle() {
    framework_.Stop();
    framework_.WaitForStop(std::chrono::milliseconds::zero());
  }
  RunningBundle(const RunningBundle&) = delete;
  RunningBundle& operator=(const RunningBundle&) = delete;

  cppmicroservices::Bundle& bundle() { return bundle_; }

  // Null if the service is not registered.
  std::shared_ptr<soca::Updater> updater() {
    const auto reference = framework_.GetBundleContext().GetServiceReference<soca::Updater>();
    return reference ? framework_.GetBundleContext().GetService(reference) : nullptr;
  }

 private:
  cppmicroservices::Bundle start(const char* path) {
    auto bundle = framework_.GetBundleContext().InstallBundles(path).at(0);
    bundle.Start();
    return bundle;
  }

  cppmicroservices::Framework framework_;
  cppmicroservices::Bundle bundle_;
};

class BundleInTheRuntime : public testing::TestWithParam<BundleFile> {
 protected:
  BundleInTheRuntime() {
    PathDispatcher::getDispatcher().setClassPath({soca::testing::projectPath("examples")});
    soca::UpdaterImpl own;
    expected_ = updatedText(own);
  }

  fl::ustring expected_;
};

TEST_P(BundleInTheRuntime, StartsAndStopsTwentyTimes) {
  for (int life = 0; life < 20; ++life) {
    RunningBundle running(GetParam().path);
    EXPECT_EQ(running.bundle().GetSymbolicName(), "com_orrery_systemobject_analyzer");
    EXPECT_EQ(updatedText(*running.updater()), expected_);
  }
}

TEST_P(BundleInTheRuntime, ServesManyThreadsByOneObject) {
  RunningBundle running(GetParam().path);
  const auto updater = running.updater();
  ASSERT_NE(updater, nullptr);
  std::vector<std::thread> clients;
  clients.reserve(8);
  for (int client = 0; client < 8; ++client) {
    clients.emplace_back([&] {
      for (int call = 0; call < 20; ++call) {
        EXPECT_EQ(running.updater(), updater);
        EXPECT_EQ(updatedText(*updater), expected_);
        EXPECT_FALSE(updater->reportActions(className, true).empty());
      }
    });
  }
  for (auto& client : clients) client.join();
}

TEST_P(BundleInTheRuntime, FailsWithAnIdThatItsClientCanRead) {
  RunningBundle running(GetParam().path);
  const auto updater = running.updater();
  try {
    updater->reportActions(u"no.Class", false);
    FAIL() << "it should not succeed";
  } catch (const foundation::core::except::IMsgIDException& failure) {
    EXPECT_EQ(failure.GetID(), "VELUM:system:Analyzer:NotASystemObject");
  }
  EXPECT_THROW(updater->update(u"no.Class", allFamilies, false), std::exception);
  EXPECT_EQ(updatedText(*updater), expected_);
}

TEST_P(BundleInTheRuntime, IsStoppedAndStartedAgain) {
  RunningBundle running(GetParam().path);
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(updatedText(*running.updater()), expected_);
    running.bundle().Stop();
    EXPECT_EQ(running.updater(), nullptr);
    running.bundle().Start();
  }
  EXPECT_EQ(updatedText(*running.updater()), expected_);
}

INSTANTIATE_TEST_SUITE_P(Bundle, BundleInTheRuntime, testing::ValuesIn(bundleFiles),
                         testing::PrintToStringParamName());

}  // namespace
