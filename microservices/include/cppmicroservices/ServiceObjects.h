// Access to the service object behind one reference, on behalf of one bundle context.
#pragma once

#include "cppmicroservices/ServiceReference.h"

#include <memory>

namespace cppmicroservices {

class BundleContext;

namespace detail {
class BundleContextPrivate;
// The service object for reference as seen by context, or null when it is unregistered.
// Throws std::runtime_error when the context is no longer valid.
std::shared_ptr<void> serviceFor(const std::shared_ptr<BundleContextPrivate>& context,
                                 const ServiceReferenceBase& reference);
} // namespace detail

template <class S>
class ServiceObjects {
public:
    // The service object, null once the service is unregistered.
    std::shared_ptr<S> GetService() const
    {
        return std::static_pointer_cast<S>(detail::serviceFor(context_, reference_));
    }

    ServiceReference<S> GetServiceReference() const { return reference_; }

private:
    friend class BundleContext;

    ServiceObjects(std::shared_ptr<detail::BundleContextPrivate> context, ServiceReference<S> reference)
        : context_(std::move(context)), reference_(std::move(reference))
    {
    }

    std::shared_ptr<detail::BundleContextPrivate> context_;
    ServiceReference<S> reference_;
};

} // namespace cppmicroservices
