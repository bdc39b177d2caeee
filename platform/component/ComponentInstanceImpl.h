// The component that makes a service object by its default constructor.
#pragma once

#include <cxxabi.h>

#include <cstdlib>
#include <tuple>
#include <typeinfo>

#include "platform/component/ComponentInstance.h"

namespace cppmicroservices::service::component::detail {

// The name under which the runtime knows an interface, such as "soca::Updater".
template <class Interface>
std::string interfaceName() {
  const std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(typeid(Interface).name(), nullptr, nullptr, nullptr), &std::free);
  return name ? name.get() : typeid(Interface).name();
}

template <class Implementation, class Interfaces>
class ComponentInstanceImpl;

// A component without references and configuration, whose implementation needs no notice of its
// life cycle: there is nothing to bind, to activate or to modify.
template <class Implementation, class... Interfaces>
class ComponentInstanceImpl<Implementation, std::tuple<Interfaces...>> final
    : public ComponentInstance {
 public:
  void CreateInstance(const std::shared_ptr<ComponentContext>& context) override {
    context_ = context;
    service_ = std::make_shared<Implementation>();
  }
  void BindReferences(const std::shared_ptr<ComponentContext>&) override {}
  void UnbindReferences() override {}
  void Activate() override {}
  void Deactivate() override {}
  void Modified() override {}
  void InvokeUnbindMethod(const std::string&, std::shared_ptr<void>) override {}
  void InvokeBindMethod(const std::string&, std::shared_ptr<void>) override {}
  InterfaceMapPtr GetInterfaceMap() override {
    auto map = std::make_shared<InterfaceMap>();
    // A client casts the void pointer back to the interface, so it must hold that exact type.
    (map->emplace(interfaceName<Interfaces>(), std::shared_ptr<Interfaces>(service_)), ...);
    return map;
  }
  bool DoesModifiedMethodExist() override { return false; }

 private:
  std::shared_ptr<ComponentContext> context_;
  std::shared_ptr<Implementation> service_;
};

}  // namespace cppmicroservices::service::component::detail
