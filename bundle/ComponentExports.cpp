// The three functions that the component runtime looks up by name in the bundle.
#include <atomic>
#include <new>
#include <tuple>

#ifdef SOCA_WITH_COMPONENT_RUNTIME
#include <cppmicroservices/servicecomponent/detail/ComponentInstanceImpl.hpp>
#else
#include "platform/component/ComponentInstanceImpl.h"
#endif
#include "service/UpdaterImpl.h"
#include "soca/Updater.h"

namespace cppmicroservices {

class BundleContextPrivate;

}  // namespace cppmicroservices

namespace {

using cppmicroservices::BundleContextPrivate;
using cppmicroservices::service::component::detail::ComponentInstance;
using UpdaterComponent =
    cppmicroservices::service::component::detail::ComponentInstanceImpl<soca::UpdaterImpl,
                                                                        std::tuple<soca::Updater>>;

// Owned by the runtime; null without it.
std::atomic<BundleContextPrivate*> bundleContext = nullptr;

}  // namespace

// The runtime derives these names from those of the component and the bundle.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" {

// Null if there is no memory. The instance is released by DeleteInstance_soca_UpdaterImpl.
[[gnu::visibility("default")]] ComponentInstance* NewInstance_soca_UpdaterImpl() {
  return new (std::nothrow) UpdaterComponent;
}

[[gnu::visibility("default")]] void DeleteInstance_soca_UpdaterImpl(ComponentInstance* instance) {
  delete instance;
}

[[gnu::visibility("default")]] void
_us_set_bundle_context_instance_com_orrery_systemobject_analyzer(BundleContextPrivate* context) {
  bundleContext.exchange(context);
}

// For the bundle's own code: the runtime's headers find the context by this function. Not exported.
BundleContextPrivate* _us_get_bundle_context_instance_com_orrery_systemobject_analyzer() {
  return bundleContext.load();
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
