// One registered service: its objects, interface names, properties and owning bundle.
// References and registrations share it.
#pragma once

#include "PropertyTable.h"

#include "cppmicroservices/ServiceInterface.h"
#include "cppmicroservices/ServiceReferenceBase.h"
#include "cppmicroservices/ServiceRegistrationBase.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace cppmicroservices::detail {

class BundlePrivate;
class ServiceRegistry;

// An interface name without the "::" that names a class of the global namespace, so that
// "::IFoo" and "IFoo" are the same interface when registering and when looking up.
inline std::string_view withoutGlobalScope(std::string_view interfaceId)
{
    return interfaceId.starts_with("::") ? interfaceId.substr(2) : interfaceId;
}

// The object registered under interfaceId, without building a key string; null when absent.
std::shared_ptr<void> interfaceIn(const InterfaceMap& map, std::string_view interfaceId);

inline constexpr const char* ALREADY_UNREGISTERED = "ServiceRegistration object already unregistered";

class ServiceRecord {
public:
    ServiceRecord(long id, InterfaceMapConstPtr services, std::vector<std::string> interfaces, PropertyTable properties,
                  int ranking, std::weak_ptr<BundlePrivate> bundle, std::weak_ptr<ServiceRegistry> registry);

    long id() const { return id_; }
    const std::vector<std::string>& interfaces() const { return interfaces_; }
    // The record's own copy of that interface name (a leading "::" ignored), which lives as
    // long as the record; empty when the record has no such interface.
    std::string_view interfaceNamed(std::string_view interfaceId) const;
    const std::weak_ptr<BundlePrivate>& bundle() const { return bundle_; }
    const std::weak_ptr<ServiceRegistry>& registry() const { return registry_; }
    bool registered() const { return registered_.load(std::memory_order_acquire); }
    // True for the one caller that begins unregistering the record.
    bool claimUnregistering() { return !unregistering_.exchange(true, std::memory_order_acq_rel); }

    // Safe from any thread.
    int ranking() const;
    Any property(std::string_view key) const;
    std::vector<std::string> propertyKeys() const;
    bool matches(const FilterNode& filter) const;
    InterfaceMapConstPtr services() const;

    // For the registry, which calls these under its own lock: readers under the shared
    // lock, writers under the exclusive one.
    int rankingInRegistry() const { return ranking_; }
    bool matchesInRegistry(const FilterNode& filter) const;
    void replaceProperties(PropertyTable properties, int ranking);
    // Marks the record unregistered and hands back its service objects, so that the
    // registry can release them after dropping its lock.
    InterfaceMapConstPtr withdraw();

private:
    const long id_;
    const std::vector<std::string> interfaces_;
    const std::weak_ptr<BundlePrivate> bundle_;
    const std::weak_ptr<ServiceRegistry> registry_;
    std::atomic<bool> registered_{true};
    std::atomic<bool> unregistering_{false};

    mutable std::mutex mutex_; // guards the members below for readers outside the registry
    InterfaceMapConstPtr services_;
    PropertyTable properties_;
    int ranking_;
};

// Builds and opens up references and registrations for the framework's own code.
struct ReferenceAccess {
    static ServiceReferenceBase make(std::shared_ptr<ServiceRecord> record, std::string_view interfaceId)
    {
        return ServiceReferenceBase(std::move(record), interfaceId);
    }
    static const std::shared_ptr<ServiceRecord>& record(const ServiceReferenceBase& reference)
    {
        return reference.record_;
    }
    static std::string_view interfaceId(const ServiceReferenceBase& reference) { return reference.interfaceId_; }
};

struct RegistrationAccess {
    static ServiceRegistrationBase make(std::shared_ptr<ServiceRecord> record)
    {
        return ServiceRegistrationBase(std::move(record));
    }
};

} // namespace cppmicroservices::detail
