#include "cppmicroservices/BundleEvent.h"
#include "cppmicroservices/ServiceEvent.h"

#include "cppmicroservices/Constants.h"

#include <ostream>
#include <stdexcept>

namespace cppmicroservices {

ServiceEvent::ServiceEvent(Type type, const ServiceReferenceBase& reference)
    : type_(type), reference_(reference), valid_(true)
{
}

ServiceEvent::operator bool() const
{
    return valid_;
}

ServiceEvent::Type ServiceEvent::GetType() const
{
    return type_;
}

ServiceReferenceU ServiceEvent::GetServiceReference() const
{
    return reference_;
}

std::ostream& operator<<(std::ostream& out, ServiceEvent::Type type)
{
    switch (type) {
    case ServiceEvent::SERVICE_REGISTERED:
        return out << "REGISTERED";
    case ServiceEvent::SERVICE_MODIFIED:
        return out << "MODIFIED";
    case ServiceEvent::SERVICE_UNREGISTERING:
        return out << "UNREGISTERING";
    case ServiceEvent::SERVICE_MODIFIED_ENDMATCH:
        return out << "MODIFIED_ENDMATCH";
    }
    return out << "unknown service event type (" << static_cast<int>(type) << ")";
}

std::ostream& operator<<(std::ostream& out, const ServiceEvent& event)
{
    if (!event) {
        return out << "NONE";
    }
    out << event.GetType();
    if (const ServiceReferenceU reference = event.GetServiceReference()) {
        out << " " << reference.GetProperty(Constants::SERVICE_ID).ToStringNoExcept() << " objectClass="
            << reference.GetProperty(Constants::OBJECTCLASS).ToStringNoExcept() << ")";
    }
    return out;
}

BundleEvent::BundleEvent(Type type, const Bundle& bundle) : type_(type), bundle_(bundle)
{
    if (!bundle_) {
        throw std::invalid_argument("invalid bundle");
    }
}

BundleEvent::operator bool() const
{
    return static_cast<bool>(bundle_);
}

BundleEvent::Type BundleEvent::GetType() const
{
    return type_;
}

Bundle BundleEvent::GetBundle() const
{
    return bundle_;
}

std::ostream& operator<<(std::ostream& out, BundleEvent::Type type)
{
    switch (type) {
    case BundleEvent::BUNDLE_INSTALLED:
        return out << "INSTALLED";
    case BundleEvent::BUNDLE_STARTED:
        return out << "STARTED";
    case BundleEvent::BUNDLE_STOPPED:
        return out << "STOPPED";
    case BundleEvent::BUNDLE_STARTING:
        return out << "STARTING";
    case BundleEvent::BUNDLE_STOPPING:
        return out << "STOPPING";
    }
    return out << "Unknown bundle event type (" << static_cast<int>(type) << ")";
}

std::ostream& operator<<(std::ostream& out, const BundleEvent& event)
{
    if (!event) {
        return out << "NONE";
    }
    const Bundle bundle = event.GetBundle();
    return out << event.GetType() << " #" << bundle.GetBundleId() << " (" << bundle.GetSymbolicName() << " at "
               << bundle.GetLocation() << ")";
}

std::ostream& operator<<(std::ostream& out, const Bundle& bundle)
{
    if (!bundle) {
        return out << "invalid bundle";
    }
    return out << "bundle " << bundle.GetSymbolicName() << " (id " << bundle.GetBundleId() << ")";
}

std::ostream& operator<<(std::ostream& out, const ServiceReferenceBase& reference)
{
    if (!reference) {
        return out << "invalid service reference";
    }
    return out << "service " << reference.GetProperty(Constants::SERVICE_ID).ToStringNoExcept() << " ("
               << reference.GetInterfaceId() << ") of " << reference.GetBundle();
}

} // namespace cppmicroservices
