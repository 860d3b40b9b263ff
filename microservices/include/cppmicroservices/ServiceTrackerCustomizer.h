// What a ServiceTracker does as services come, change and go; by default it gets the
// service object, and does nothing on changes and removals.
#pragma once

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReference.h"

#include <memory>

namespace cppmicroservices {

namespace detail {

// The type a tracker keeps for each service: T, except that ServiceTracker<void> (services
// found by filter alone, whatever their interfaces) keeps each one's interface map, as in
// CppMicroServices.
template <class S, class T>
struct TrackedTypeOf {
    using type = T;
};

template <>
struct TrackedTypeOf<void, void> {
    using type = const InterfaceMap;
};

} // namespace detail

template <class S, class T = S>
class ServiceTrackerCustomizer {
public:
    using TrackedParmType = typename detail::TrackedTypeOf<S, T>::type;
    using TrackedParamType = TrackedParmType;

    virtual ~ServiceTrackerCustomizer() = default;

    // The object to track for a service that matches; null leaves the service untracked.
    virtual std::shared_ptr<TrackedParmType> AddingService(const ServiceReference<S>& reference) = 0;
    // A tracked service's properties changed and it still matches.
    virtual void ModifiedService(const ServiceReference<S>& reference,
                                 const std::shared_ptr<TrackedParmType>& service) = 0;
    // A tracked service went, stopped matching, or the tracker closed.
    virtual void RemovedService(const ServiceReference<S>& reference,
                                const std::shared_ptr<TrackedParmType>& service) = 0;
};

} // namespace cppmicroservices
