// The bundle without the runtime, in the steps in which the runtime uses it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "platform/component/ComponentInstance.h"
#include "platform/paths/PathDispatcher.h"
#include "rules/RuleFamilies.h"
#include "service/UpdaterImpl.h"
#include "tests/Places.h"
#include "tests/bundle/BundleFile.h"
#include "tests/bundle/ResourceArchive.h"

namespace {

using cppmicroservices::service::component::detail::ComponentInstance;

using soca::allFamilies;

std::string bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string outputOf(const std::string& command) {
  std::FILE* pipe = ::popen(command.c_str(), "r");
  std::string output;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
  EXPECT_EQ(::pclose(pipe), 0) << command;
  return output;
}

class BundleModule : public testing::TestWithParam<BundleFile> {
 protected:
  // Never closed, as in the runtime.
  void* library() {
    void* library = ::dlopen(GetParam().path, RTLD_LAZY | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(::dlerror());
    return library;
  }

  template <class Function>
  Function* function(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(library(), name));
  }

  std::shared_ptr<ComponentInstance> newInstance() {
    function<void(void*)>("_us_set_bundle_context_instance_com_orrery_systemobject_analyzer")(this);
    return {function<ComponentInstance*()>("NewInstance_soca_UpdaterImpl")(),
            function<void(ComponentInstance*)>("DeleteInstance_soca_UpdaterImpl")};
  }

  static std::shared_ptr<soca::Updater> updaterOf(ComponentInstance& instance) {
    return std::static_pointer_cast<soca::Updater>(instance.GetInterfaceMap()->at("soca::Updater"));
  }

  std::shared_ptr<soca::Updater> newUpdater() {
    const auto instance = newInstance();
    instance->CreateInstance(nullptr);
    return updaterOf(*instance);
  }
};

TEST_P(BundleModule, HasOnlyItsManifest) {
  const auto entries = entriesOfZip(bytesOfSection(bytesOf(GetParam().path), ".us_resources"));
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries.begin()->first, "com_orrery_systemobject_analyzer/manifest.json");
  EXPECT_EQ(nlohmann::json::parse(entries.begin()->second), nlohmann::json::parse(R"({
      "bundle.symbolic_name": "com_orrery_systemobject_analyzer",
      "bundle.activator": false,
      "scr": {"version": 1,
              "components": [{"implementation-class": "soca::UpdaterImpl", "immediate": false,
                              "service": {"interfaces": ["soca::Updater"],
                                          "scope": "singleton"}}]}})"));
}

TEST_P(BundleModule, ExportsThreeFunctions) {
  std::istringstream lines(
      outputOf(SOCA_NM " -D --defined-only -j " + std::string(GetParam().path)));
  const std::vector<std::string> names{std::istream_iterator<std::string>(lines), {}};
  EXPECT_EQ(names, (std::vector<std::string>{
                       "DeleteInstance_soca_UpdaterImpl", "NewInstance_soca_UpdaterImpl",
                       "_us_set_bundle_context_instance_com_orrery_systemobject_analyzer"}));
}

TEST_P(BundleModule, FollowsTheLifeCycleOfTheRuntime) {
  PathDispatcher::getDispatcher().setClassPath({soca::testing::projectPath("examples")});
  auto instance = newInstance();
  ASSERT_NE(instance, nullptr);
  instance->CreateInstance(nullptr);
  instance->BindReferences(nullptr);
  instance->Activate();
  EXPECT_FALSE(instance->DoesModifiedMethodExist());
  EXPECT_EQ(instance->GetInterfaceMap()->size(), 1U);
  const auto updater = updaterOf(*instance);
  EXPECT_EQ(updaterOf(*instance), updater);
  instance->Modified();
  instance->Deactivate();
  instance->UnbindReferences();
  instance.reset();
  EXPECT_EQ(updater.use_count(), 1);
  EXPECT_TRUE(updater->update(u"radio.GainControl", allFamilies, false).at(0).updated);
}

// The bundle hides its symbols, but must share streams, exceptions and tables with the platform.
TEST_P(BundleModule, HasTheResultsOfTheSystemInThisProcess) {
  PathDispatcher::getDispatcher().setClassPath({soca::testing::projectPath("examples")});
  const auto updater = newUpdater();
  soca::UpdaterImpl own;
  for (const auto* name :
       {u"radio.GainControl", u"sigproc.SampleBuffer", u"plant.TankModel", u"tools.DataLogger"}) {
    EXPECT_EQ(updater->reportClass(name), own.reportClass(name));
    EXPECT_EQ(updater->reportActions(name, false), own.reportActions(name, false));
    const auto results = updater->update(name, allFamilies, false);
    const auto expected = own.update(name, allFamilies, false);
    EXPECT_EQ(results.at(0).text, expected.at(0).text);
    EXPECT_EQ(results.at(0).messages, expected.at(0).messages);
  }
}

INSTANTIATE_TEST_SUITE_P(Bundle, BundleModule, testing::ValuesIn(bundleFiles),
                         testing::PrintToStringParamName());

}  // namespace
