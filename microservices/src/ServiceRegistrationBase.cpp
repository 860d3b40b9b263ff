#include "cppmicroservices/ServiceRegistrationBase.h"
#include "cppmicroservices/ServiceReference.h"

#include "ServiceRecord.h"
#include "ServiceRegistry.h"

#include <algorithm>
#include <stdexcept>

namespace cppmicroservices {

namespace {

detail::ServiceRecord& checked(const std::shared_ptr<detail::ServiceRecord>& record)
{
    if (!record) {
        throw std::logic_error("invalid ServiceRegistration object");
    }
    return *record;
}

std::shared_ptr<detail::ServiceRegistry> registryOf(const detail::ServiceRecord& record)
{
    auto registry = record.registry().lock();
    if (!registry || !record.registered()) {
        throw std::logic_error(detail::ALREADY_UNREGISTERED);
    }
    return registry;
}

} // namespace

ServiceRegistrationBase::ServiceRegistrationBase(std::shared_ptr<detail::ServiceRecord> record)
    : record_(std::move(record))
{
}

ServiceRegistrationBase::operator bool() const
{
    return record_ != nullptr;
}

ServiceReferenceBase ServiceRegistrationBase::GetReference(const std::string& interfaceId) const
{
    const detail::ServiceRecord& record = checked(record_);
    if (!record.registered()) {
        throw std::logic_error(detail::ALREADY_UNREGISTERED);
    }
    const auto& interfaces = record.interfaces();
    const auto position =
        interfaceId.empty() ? interfaces.begin() : std::find(interfaces.begin(), interfaces.end(), interfaceId);
    if (position == interfaces.end()) {
        throw std::invalid_argument("the service is not registered under the interface " + interfaceId);
    }
    return detail::ReferenceAccess::make(record_, *position);
}

void ServiceRegistrationBase::SetProperties(const ServiceProperties& properties)
{
    registryOf(checked(record_))->setProperties(*record_, properties);
}

void ServiceRegistrationBase::Unregister()
{
    registryOf(checked(record_))->remove(*record_);
}

bool ServiceRegistrationBase::operator<(const ServiceRegistrationBase& other) const
{
    const auto referenceOf = [](const std::shared_ptr<detail::ServiceRecord>& record) {
        return record ? detail::ReferenceAccess::make(record, record->interfaces().front()) : ServiceReferenceU();
    };
    return referenceOf(record_) < referenceOf(other.record_);
}

bool ServiceRegistrationBase::operator==(const ServiceRegistrationBase& other) const
{
    return record_ == other.record_;
}

} // namespace cppmicroservices
