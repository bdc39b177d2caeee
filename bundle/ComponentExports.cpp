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

// Lent by the runtime; null outside of it.
std::atomic<BundleContextPrivate*> bundleContext = nullptr;

}  // namespace

// The runtime makes these names of the component's and the bundle's.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" {

// Null if there is no memory. The instance goes back by DeleteInstance_soca_UpdaterImpl.
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

// For the bundle's own code, by which the runtime's headers find the context; not exported.
BundleContextPrivate* _us_get_bundle_context_instance_com_orrery_systemobject_analyzer() {
  return bundleContext.load();
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
