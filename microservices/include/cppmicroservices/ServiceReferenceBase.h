// A reference to a registered service: its properties and its bundle, without the
// service object itself.
#pragma once

#include "cppmicroservices/Any.h"

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cppmicroservices {

class Bundle;

namespace detail {
class ServiceRecord;
struct ReferenceAccess;
} // namespace detail

class ServiceReferenceBase {
public:
    // False for a default-constructed reference or one that found no matching service.
    explicit operator bool() const;

    // The property's current value (empty when absent); keys ignore case.
    Any GetProperty(const std::string& key) const;
    void GetPropertyKeys(std::vector<std::string>& keys) const;
    std::vector<std::string> GetPropertyKeys() const;

    // The bundle that registered the service; invalid once the service is unregistered.
    Bundle GetBundle() const;

    // The interface this reference was obtained for.
    std::string GetInterfaceId() const;
    bool IsConvertibleTo(const std::string& interfaceId) const;

    // Orders by service.ranking, then by service.id in reverse: the greatest reference is
    // the one lookups prefer.
    bool operator<(const ServiceReferenceBase& other) const;
    // The same registration, whatever interface the references were obtained for.
    bool operator==(const ServiceReferenceBase& other) const;

    std::size_t Hash() const;

protected:
    ServiceReferenceBase() = default;
    // Views this reference through another interface of the same service; a service
    // without that interface leaves the reference invalid.
    void selectInterface(const std::string& interfaceId);

private:
    friend struct detail::ReferenceAccess;

    ServiceReferenceBase(std::shared_ptr<detail::ServiceRecord> record, std::string_view interfaceId);

    std::shared_ptr<detail::ServiceRecord> record_;
    std::string_view interfaceId_; // one of the record's interface names
};

// "service ID (INTERFACE) of bundle NAME (id N)", or "invalid service reference".
std::ostream& operator<<(std::ostream& out, const ServiceReferenceBase& reference);

} // namespace cppmicroservices

template <>
struct std::hash<cppmicroservices::ServiceReferenceBase> {
    std::size_t operator()(const cppmicroservices::ServiceReferenceBase& reference) const noexcept
    {
        return reference.Hash();
    }
};
