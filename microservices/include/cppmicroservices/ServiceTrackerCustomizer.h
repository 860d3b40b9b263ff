// What a ServiceTracker does as services come, change and go; by default it gets the
// service object, and does nothing on changes and removals.
#pragma once

#include "cppmicroservices/ServiceReference.h"

#include <memory>

namespace cppmicroservices {

template <class S, class T = S>
class ServiceTrackerCustomizer {
public:
    virtual ~ServiceTrackerCustomizer() = default;

    // The object to track for a service that matches; null leaves the service untracked.
    virtual std::shared_ptr<T> AddingService(const ServiceReference<S>& reference) = 0;
    // A tracked service's properties changed and it still matches.
    virtual void ModifiedService(const ServiceReference<S>& reference, const std::shared_ptr<T>& service) = 0;
    // A tracked service went, stopped matching, or the tracker closed.
    virtual void RemovedService(const ServiceReference<S>& reference, const std::shared_ptr<T>& service) = 0;
};

} // namespace cppmicroservices
