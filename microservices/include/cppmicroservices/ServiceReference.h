// A service reference typed by its interface; ServiceReferenceU leaves the type open.
#pragma once

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReferenceBase.h"

#include <type_traits>

namespace cppmicroservices {

template <class S>
class ServiceReference : public ServiceReferenceBase {
public:
    using ServiceType = S;

    ServiceReference() = default;

    // A reference for interface S of the same service; invalid when the service was not
    // registered under S.
    ServiceReference(const ServiceReferenceBase& base) : ServiceReferenceBase(base)
    {
        if constexpr (!std::is_void_v<S>) {
            selectInterface(detail::interfaceName<S>());
        }
    }
};

using ServiceReferenceU = ServiceReference<void>;

} // namespace cppmicroservices

template <class S>
struct std::hash<cppmicroservices::ServiceReference<S>> : std::hash<cppmicroservices::ServiceReferenceBase> {
};
