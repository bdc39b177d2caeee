// The interface between the component runtime and a component, for a build without the runtime's
// headers.
//
// The runtime reaches a component only by the virtual functions of ComponentInstance and the
// interface map, so a bundle built with this header loads in the runtime as long as the order of
// the functions, the types of the map and the names are the same as the runtime's. They are the
// same in 3.8.8 and later; for a component without references to other services, in 3.6.1 and
// later.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

namespace cppmicroservices {

// Services by the name of their interface. The pointer is a pointer to that interface, cast to
// void.
using InterfaceMap = std::unordered_map<std::string, std::shared_ptr<void>>;
using InterfaceMapPtr = std::shared_ptr<InterfaceMap>;

namespace service::component {

// Belongs to the runtime; only passed on.
class ComponentContext;

namespace detail {

// Makes, notifies and releases one service object. Called by the runtime, one call at a time.
class ComponentInstance {
 public:
  ComponentInstance() = default;
  ComponentInstance(const ComponentInstance&) = delete;
  ComponentInstance& operator=(const ComponentInstance&) = delete;
  virtual ~ComponentInstance() noexcept = default;

  virtual void CreateInstance(const std::shared_ptr<ComponentContext>& context) = 0;
  virtual void BindReferences(const std::shared_ptr<ComponentContext>& context) = 0;
  virtual void UnbindReferences() = 0;
  virtual void Activate() = 0;
  virtual void Deactivate() = 0;
  // The component's configuration has changed.
  virtual void Modified() = 0;
  virtual void InvokeUnbindMethod(const std::string& reference, std::shared_ptr<void> service) = 0;
  virtual void InvokeBindMethod(const std::string& reference, std::shared_ptr<void> service) = 0;
  // The service object under each of its interfaces.
  virtual InterfaceMapPtr GetInterfaceMap() = 0;
  virtual bool DoesModifiedMethodExist() = 0;
};

}  // namespace detail
}  // namespace service::component
}  // namespace cppmicroservices
