// Prints the facts about a class, the actions of an update, and the result of the update.
//
//   soca_client examples radio.GainControl
#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkEvent.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <cppmicroservices/ServiceReference.h>

#include <chrono>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "platform/failure/Exception.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/text/Conversions.h"
#include "soca/Updater.h"

namespace {

using fl::i18n::to_string;

// A framework that runs during the life of this object.
class RunningFramework {
 public:
  RunningFramework() : framework_(cppmicroservices::FrameworkFactory().NewFramework()) {
    framework_.Start();
  }
  ~RunningFramework() {
    framework_.Stop();
    framework_.WaitForStop(std::chrono::milliseconds::zero());  // however long it takes
  }
  RunningFramework(const RunningFramework&) = delete;
  RunningFramework& operator=(const RunningFramework&) = delete;

  // Starts all bundles in the file at an absolute path.
  void start(const std::string& path) {
    for (auto& bundle : context().InstallBundles(path)) bundle.Start();
  }

  std::shared_ptr<soca::Updater> updater() {
    const auto reference = context().GetServiceReference<soca::Updater>();
    if (!reference) throw std::runtime_error("nobody offers soca::Updater");
    // The runtime makes the object for the first client; if that fails, the pointer is null.
    auto service = context().GetService(reference);
    if (!service) throw std::runtime_error("soca::Updater could not be made");
    return service;
  }

 private:
  cppmicroservices::BundleContext context() { return framework_.GetBundleContext(); }

  cppmicroservices::Framework framework_;
};

void print(const soca::UpdateResult& result) {
  std::cout << "=== " << to_string(result.fileName)
            << (result.updated ? " (updated)\n" : " (as it was)\n");
  for (const fl::ustring& message : result.messages) std::cout << to_string(message) << '\n';
  std::cout << to_string(result.text);
}

void describeAndUpdate(soca::Updater& updater, const fl::ustring& className) {
  constexpr soca::UpdateMask everyFamily = ~soca::UpdateMask{0};
  std::cout << to_string(updater.reportClass(className)) << '\n'
            << to_string(updater.reportActions(className, false)) << '\n';
  for (const auto& result : updater.update(className, everyFamily, false)) print(result);
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 3) {
    std::cerr << "usage: soca_client CLASS_PATH_FOLDER CLASS\n";
    return 2;
  }
  try {
    PathDispatcher::getDispatcher().setClassPath({argv[1]});
    RunningFramework framework;
    framework.start(DECLARATIVE_SERVICES);
    framework.start(SOCA_BUNDLE);
    describeAndUpdate(*framework.updater(), fl::i18n::to_ustring(argv[2]));
    return 0;
  } catch (const foundation::core::except::IMsgIDException& failure) {
    std::cerr << failure.GetID() << '\n' << to_string(failure.GetUnicodeMessageTxt()) << '\n';
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
  }
  return 1;
}
