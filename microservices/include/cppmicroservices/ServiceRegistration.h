// A service registration typed by the interfaces the service was registered under.
#pragma once

#include "cppmicroservices/ServiceReference.h"
#include "cppmicroservices/ServiceRegistrationBase.h"

#include <type_traits>

namespace cppmicroservices {

template <class I1, class... Interfaces>
class ServiceRegistration : public ServiceRegistrationBase {
public:
    ServiceRegistration() = default;
    ServiceRegistration(const ServiceRegistrationBase& base) : ServiceRegistrationBase(base) {}

    ServiceReference<I1> GetReference() const
    {
        if constexpr (std::is_void_v<I1>) {
            return ServiceRegistrationBase::GetReference();
        } else {
            return ServiceRegistrationBase::GetReference(detail::interfaceName<I1>());
        }
    }

    template <class Interface>
    ServiceReference<Interface> GetReference() const
    {
        return ServiceRegistrationBase::GetReference(detail::interfaceName<Interface>());
    }
};

using ServiceRegistrationU = ServiceRegistration<void>;

} // namespace cppmicroservices
