// Every registered service of one framework, indexed by interface name and kept in
// lookup order (highest ranking, then lowest id) so that lookups only filter.
#pragma once

#include "EventListeners.h"
#include "ServiceRecord.h"

#include "cppmicroservices/BundleContext.h"

#include <memory>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <functional>
#include <unordered_map>
#include <vector>

namespace cppmicroservices::detail {

// Tells its listeners of each registration, change of properties and unregistration.
class ServiceRegistry : public std::enable_shared_from_this<ServiceRegistry> {
public:
    explicit ServiceRegistry(std::shared_ptr<const EventListeners> listeners) : listeners_(std::move(listeners)) {}

    // Throws std::invalid_argument for an empty map or a service.ranking that is not an
    // integer in the range of int.
    std::shared_ptr<ServiceRecord> add(const InterfaceMapConstPtr& services, const ServiceProperties& properties,
                                       const std::shared_ptr<BundlePrivate>& owner);

    // Throws std::logic_error when the record is no longer registered.
    void remove(ServiceRecord& record);
    void setProperties(ServiceRecord& record, const ServiceProperties& properties);

    void removeAllOf(const std::shared_ptr<BundlePrivate>& owner);
    void removeAll();

    // Passes each registered service under interfaceId (every service when it is empty)
    // that matches the filter (every one when null) to sink, in lookup order.
    // A leading "::" of interfaceId is ignored.
    void collect(std::string_view interfaceId, const FilterNode* filter, ReferenceSink sink, void* state) const;

private:
    using RecordList = std::vector<std::shared_ptr<ServiceRecord>>;

    PropertyTable propertyTable(long id, const std::vector<std::string>& interfaces,
                                const ServiceProperties& properties, int& ranking) const;
    void index(const std::shared_ptr<ServiceRecord>& record);
    void unindex(const ServiceRecord& record);
    // Unregisters those of the records no other caller is unregistering: tells the
    // listeners first, then removes them.
    void unregisterAll(const RecordList& records);
    // Unregisters records this caller has claimed.
    void unregisterClaimed(const RecordList& records);

    const std::shared_ptr<const EventListeners> listeners_;

    mutable std::shared_mutex mutex_;
    long nextId_ = 1;
    // Looked up by string_view, so that a lookup builds no key string.
    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
    };
    std::unordered_map<std::string, RecordList, NameHash, std::equal_to<>> byInterface_;
    RecordList all_;
};

} // namespace cppmicroservices::detail
