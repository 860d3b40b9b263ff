// The registering code's handle on a registered service: update its properties or
// unregister it.
#pragma once

#include "cppmicroservices/ServiceProperties.h"
#include "cppmicroservices/ServiceReferenceBase.h"

#include <memory>
#include <string>

namespace cppmicroservices {

namespace detail {
class ServiceRecord;
struct RegistrationAccess;
} // namespace detail

class ServiceRegistrationBase {
public:
    ServiceRegistrationBase() = default;

    // False for a default-constructed registration; stays true after Unregister.
    explicit operator bool() const;

    // A reference for interfaceId (the first interface when empty). Throws std::logic_error
    // once unregistered.
    ServiceReferenceBase GetReference(const std::string& interfaceId = std::string()) const;

    // Replaces the caller's properties; the framework's own (objectclass, service.id,
    // service.scope) are kept. Throws std::logic_error once unregistered.
    void SetProperties(const ServiceProperties& properties);

    // Removes the service from the registry. Throws std::logic_error when already
    // unregistered, by this call, its bundle's stop or the framework's stop.
    void Unregister();

    bool operator<(const ServiceRegistrationBase& other) const;
    bool operator==(const ServiceRegistrationBase& other) const;

private:
    friend struct detail::RegistrationAccess;

    explicit ServiceRegistrationBase(std::shared_ptr<detail::ServiceRecord> record);

    std::shared_ptr<detail::ServiceRecord> record_;
};

} // namespace cppmicroservices
