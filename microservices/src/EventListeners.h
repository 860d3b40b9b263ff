// The service and bundle listeners of one framework, and synchronous delivery of events to
// them in the order they were added. Delivery runs outside every lock, on a snapshot of the
// listeners; one removed meanwhile is not called again. A listener that throws is reported
// on the log channel "cppmicroservices::listeners" and the others still receive the event.
#pragma once

#include "FilterExpression.h"

#include "cppmicroservices/BundleEvent.h"
#include "cppmicroservices/ServiceEvent.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace cppmicroservices::detail {

class BundleContextPrivate;
class ServiceRecord;

class EventListeners {
public:
    struct Entry {
        long id = 0;
        const BundleContextPrivate* owner = nullptr;
        ServiceListener onService;
        BundleListener onBundle;
        std::shared_ptr<const FilterNode> filter; // services only; null matches every service
        std::atomic<bool> removed{false};
    };
    using Snapshot = std::vector<std::shared_ptr<Entry>>;

    long addServiceListener(const BundleContextPrivate* owner, ServiceListener listener,
                            std::shared_ptr<const FilterNode> filter);
    long addBundleListener(const BundleContextPrivate* owner, BundleListener listener);
    void remove(long id);
    // Removes the listeners a context added, when its bundle stops.
    void removeAllOf(const BundleContextPrivate* owner);

    // The service listeners now, in the order they were added.
    Snapshot serviceListeners() const;

    void serviceChanged(ServiceEvent::Type type, const std::shared_ptr<ServiceRecord>& record) const;
    // After a change of properties: SERVICE_MODIFIED to the listeners the service matches
    // now, SERVICE_MODIFIED_ENDMATCH to those it matched before (matchedBefore, one flag per
    // entry of listeners) and no longer does.
    void serviceModified(const Snapshot& listeners, const std::vector<bool>& matchedBefore,
                         const std::shared_ptr<ServiceRecord>& record) const;
    void bundleChanged(const BundleEvent& event) const;

private:
    long add(std::shared_ptr<Entry> entry);
    Snapshot select(bool services) const;
    template <class Predicate>
    void removeWhere(Predicate&& predicate);

    mutable std::mutex mutex_;
    long nextId_ = 1;
    Snapshot entries_;
};

// Whether a listener's filter (null: none) accepts the record's properties.
bool acceptsRecord(const EventListeners::Entry& entry, const ServiceRecord& record);

} // namespace cppmicroservices::detail
