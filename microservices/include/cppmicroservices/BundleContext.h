// A bundle's access to the framework: registering and finding services, installing and
// listing bundles. Valid while its bundle is starting, active or stopping; afterwards every
// call throws std::runtime_error("The bundle context is no longer valid").
#pragma once

#include "cppmicroservices/Any.h"
#include "cppmicroservices/AnyMap.h"
#include "cppmicroservices/ListenerToken.h"
#include "cppmicroservices/ServiceEvent.h"
#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceObjects.h"
#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistration.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace cppmicroservices {

class Bundle;

namespace detail {
class BundleContextPrivate;
struct ContextAccess;
// Receives each reference a lookup finds, best first.
using ReferenceSink = void (*)(void* state, const ServiceReferenceBase& reference);
} // namespace detail

class BundleContext {
public:
    // An invalid context.
    BundleContext() = default;

    explicit operator bool() const;
    bool operator==(const BundleContext& other) const;

    // A framework property from the configuration the framework was created with.
    Any GetProperty(const std::string& key) const;
    AnyMap GetProperties() const;

    Bundle GetBundle() const;
    // The bundle with that id; an invalid Bundle when there is none.
    Bundle GetBundle(long id) const;
    std::vector<Bundle> GetBundles() const;
    std::vector<Bundle> GetBundles(const std::string& location) const;

    // Registers the service object under each interface of the map, with the caller's
    // properties plus objectclass, service.id and service.scope (and service.ranking 0
    // unless given). The service is unregistered when this context's bundle stops.
    ServiceRegistrationU RegisterService(const InterfaceMapConstPtr& service,
                                         const ServiceProperties& properties = ServiceProperties());

    template <class I1, class... Interfaces, class Impl>
    ServiceRegistration<I1, Interfaces...> RegisterService(const std::shared_ptr<Impl>& impl,
                                                           const ServiceProperties& properties = ServiceProperties())
    {
        return RegisterService(MakeInterfaceMap<I1, Interfaces...>(impl), properties);
    }

    // The services registered under the interface (all services when it is empty) whose
    // properties match the filter (all when empty), highest service.ranking first, then
    // lowest service.id. A malformed filter throws std::invalid_argument.
    std::vector<ServiceReferenceU> GetServiceReferences(const std::string& clazz,
                                                        const std::string& filter = std::string()) const;

    template <class S>
    std::vector<ServiceReference<S>> GetServiceReferences(const std::string& filter = std::string()) const
    {
        std::vector<ServiceReference<S>> references;
        collectReferences(
            detail::interfaceName<S>(), filter,
            [](void* state, const ServiceReferenceBase& found) {
                static_cast<std::vector<ServiceReference<S>>*>(state)->emplace_back(found);
            },
            &references);
        return references;
    }

    // The best service under the interface; an invalid reference when there is none.
    ServiceReferenceU GetServiceReference(const std::string& clazz) const;

    template <class S>
    ServiceReference<S> GetServiceReference() const
    {
        return GetServiceReference(detail::interfaceName<S>());
    }

    // The service objects by interface name; null once the service is unregistered.
    // An invalid reference throws std::invalid_argument.
    InterfaceMapConstPtr GetService(const ServiceReferenceU& reference) const;

    template <class S>
    std::shared_ptr<S> GetService(const ServiceReference<S>& reference) const
    {
        return std::static_pointer_cast<S>(detail::serviceFor(d_, reference));
    }

    // Access to the service object behind the reference. An invalid reference throws
    // std::invalid_argument, an invalid context std::runtime_error.
    template <class S>
    ServiceObjects<S> GetServiceObjects(const ServiceReference<S>& reference) const
    {
        if (!reference) {
            throw std::invalid_argument("The service reference is invalid");
        }
        requireValid();
        return ServiceObjects<S>(d_, reference);
    }

    // Installs the bundle in the directory location, or the bundles in its immediate
    // subdirectories that hold a manifest.json. Returns the bundles at that location,
    // including those installed before. Throws std::runtime_error naming the file and the
    // problem; then nothing is installed.
    std::vector<Bundle> InstallBundles(const std::string& location) const;

    // Calls listener, synchronously on the thread that makes the change, for each event of
    // a service that matches the filter (every service when it is empty): after it is
    // registered, after its properties change, and before it is unregistered. Listeners
    // are called in the order they were added; one that throws is reported on the log
    // channel "cppmicroservices::listeners" and the others are still called. A malformed
    // filter throws std::invalid_argument. The listener is removed when this context's
    // bundle stops.
    ListenerToken AddServiceListener(const ServiceListener& listener, const std::string& filter = std::string());
    // As AddServiceListener, for bundles installed, starting, started, stopping, stopped.
    ListenerToken AddBundleListener(const BundleListener& listener);
    // Removes the listener the token names; nothing happens for an invalid token or one
    // already removed.
    void RemoveListener(ListenerToken token);

private:
    friend struct detail::ContextAccess;

    explicit BundleContext(std::shared_ptr<detail::BundleContextPrivate> context);

    void requireValid() const;
    void collectReferences(const std::string& interfaceId, const std::string& filter, detail::ReferenceSink sink,
                           void* state) const;

    std::shared_ptr<detail::BundleContextPrivate> d_;
};

} // namespace cppmicroservices

#include "cppmicroservices/Bundle.h"
