#include "cppmicroservices/ServiceReferenceBase.h"

#include "BundlePrivate.h"
#include "ServiceRecord.h"

namespace cppmicroservices {

ServiceReferenceBase::ServiceReferenceBase(std::shared_ptr<detail::ServiceRecord> record, std::string_view interfaceId)
    : record_(std::move(record)), interfaceId_(interfaceId)
{
}

ServiceReferenceBase::operator bool() const
{
    return record_ != nullptr;
}

Any ServiceReferenceBase::GetProperty(const std::string& key) const
{
    return record_ ? record_->property(key) : Any();
}

void ServiceReferenceBase::GetPropertyKeys(std::vector<std::string>& keys) const
{
    keys = GetPropertyKeys();
}

std::vector<std::string> ServiceReferenceBase::GetPropertyKeys() const
{
    return record_ ? record_->propertyKeys() : std::vector<std::string>();
}

Bundle ServiceReferenceBase::GetBundle() const
{
    if (!record_ || !record_->registered()) {
        return Bundle();
    }
    auto bundle = record_->bundle().lock();
    return bundle ? detail::BundleAccess::make(std::move(bundle)) : Bundle();
}

std::string ServiceReferenceBase::GetInterfaceId() const
{
    return std::string(interfaceId_);
}

bool ServiceReferenceBase::IsConvertibleTo(const std::string& interfaceId) const
{
    if (!record_) {
        return false;
    }
    return !record_->interfaceNamed(interfaceId).empty();
}

bool ServiceReferenceBase::operator<(const ServiceReferenceBase& other) const
{
    if (!record_ || !other.record_) {
        return !record_ && other.record_;
    }
    const int ranking = record_->ranking();
    const int otherRanking = other.record_->ranking();
    if (ranking != otherRanking) {
        return ranking < otherRanking;
    }
    return record_->id() > other.record_->id();
}

bool ServiceReferenceBase::operator==(const ServiceReferenceBase& other) const
{
    return record_ == other.record_;
}

std::size_t ServiceReferenceBase::Hash() const
{
    return std::hash<const void*>()(record_.get());
}

void ServiceReferenceBase::selectInterface(const std::string& interfaceId)
{
    if (!record_ || interfaceId_ == interfaceId) {
        return;
    }
    interfaceId_ = record_->interfaceNamed(interfaceId);
    if (interfaceId_.empty()) {
        record_.reset();
    }
}

} // namespace cppmicroservices
