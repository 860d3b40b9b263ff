// A change to a registered service, as service listeners receive it.
#pragma once

#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ListenerToken.h"

#include <iosfwd>

namespace cppmicroservices {

class ServiceEvent {
public:
    enum Type : std::uint32_t {
        // The service was registered.
        SERVICE_REGISTERED = 0x01,
        // Its properties changed, and it matches the listener's filter.
        SERVICE_MODIFIED = 0x02,
        // It is about to be unregistered; it can still be used during delivery.
        SERVICE_UNREGISTERING = 0x04,
        // Its properties changed, and it no longer matches the listener's filter.
        SERVICE_MODIFIED_ENDMATCH = 0x08,
    };

    // An invalid event.
    ServiceEvent() = default;
    ServiceEvent(Type type, const ServiceReferenceBase& reference);

    // False only for a default-constructed event.
    explicit operator bool() const;
    Type GetType() const;
    ServiceReferenceU GetServiceReference() const;

    template <class S>
    ServiceReference<S> GetServiceReference() const
    {
        return ServiceReference<S>(reference_);
    }

private:
    Type type_ = SERVICE_REGISTERED;
    ServiceReferenceU reference_;
    bool valid_ = false;
};

// As CppMicroServices: "REGISTERED", ..., "unknown service event type (N)"; an event as
// "REGISTERED 3 objectClass=[Interface])" (the parenthesis as CppMicroServices writes it),
// an invalid one as "NONE".
std::ostream& operator<<(std::ostream& out, ServiceEvent::Type type);
std::ostream& operator<<(std::ostream& out, const ServiceEvent& event);

} // namespace cppmicroservices
