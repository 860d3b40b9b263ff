#include "EventListeners.h"

#include "ServiceRecord.h"

#include "cppmicroservices/detail/CallbackFailure.h"

#include <algorithm>
#include <string>
#include <utility>

namespace cppmicroservices::detail {

namespace {

// Calls one listener unless it was removed meanwhile; what it throws is reported.
template <class Call>
void callListener(const EventListeners::Entry& entry, const char* kind, Call&& call)
{
    if (!entry.removed.load(std::memory_order_acquire)) {
        callReporting(std::forward<Call>(call),
                      [&] { return std::string(kind) + " listener " + std::to_string(entry.id); });
    }
}

ServiceEvent eventFor(ServiceEvent::Type type, const std::shared_ptr<ServiceRecord>& record)
{
    return ServiceEvent(type, ReferenceAccess::make(record, record->interfaces().front()));
}

} // namespace

bool acceptsRecord(const EventListeners::Entry& entry, const ServiceRecord& record)
{
    return entry.filter == nullptr || record.matches(*entry.filter);
}

long EventListeners::add(std::shared_ptr<Entry> entry)
{
    const std::lock_guard lock(mutex_);
    entry->id = nextId_++;
    entries_.push_back(entry);
    return entry->id;
}

long EventListeners::addServiceListener(const BundleContextPrivate* owner, ServiceListener listener,
                                        std::shared_ptr<const FilterNode> filter)
{
    auto entry = std::make_shared<Entry>();
    entry->owner = owner;
    entry->onService = std::move(listener);
    entry->filter = std::move(filter);
    return add(std::move(entry));
}

long EventListeners::addBundleListener(const BundleContextPrivate* owner, BundleListener listener)
{
    auto entry = std::make_shared<Entry>();
    entry->owner = owner;
    entry->onBundle = std::move(listener);
    return add(std::move(entry));
}

template <class Predicate>
void EventListeners::removeWhere(Predicate&& predicate)
{
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [&predicate](const std::shared_ptr<Entry>& entry) {
        if (!predicate(*entry)) {
            return false;
        }
        entry->removed.store(true, std::memory_order_release);
        return true;
    });
}

void EventListeners::remove(long id)
{
    removeWhere([id](const Entry& entry) { return entry.id == id; });
}

void EventListeners::removeAllOf(const BundleContextPrivate* owner)
{
    removeWhere([owner](const Entry& entry) { return entry.owner == owner; });
}

EventListeners::Snapshot EventListeners::select(bool services) const
{
    const std::lock_guard lock(mutex_);
    Snapshot listeners;
    std::copy_if(entries_.begin(), entries_.end(), std::back_inserter(listeners),
                 [services](const std::shared_ptr<Entry>& entry) {
                     return services ? static_cast<bool>(entry->onService) : static_cast<bool>(entry->onBundle);
                 });
    return listeners;
}

EventListeners::Snapshot EventListeners::serviceListeners() const
{
    return select(true);
}

void EventListeners::serviceChanged(ServiceEvent::Type type, const std::shared_ptr<ServiceRecord>& record) const
{
    const ServiceEvent event = eventFor(type, record);
    for (const auto& entry : serviceListeners()) {
        if (acceptsRecord(*entry, *record)) {
            callListener(*entry, "service", [&] { entry->onService(event); });
        }
    }
}

void EventListeners::serviceModified(const Snapshot& listeners, const std::vector<bool>& matchedBefore,
                                     const std::shared_ptr<ServiceRecord>& record) const
{
    const ServiceEvent modified = eventFor(ServiceEvent::SERVICE_MODIFIED, record);
    const ServiceEvent endMatch = eventFor(ServiceEvent::SERVICE_MODIFIED_ENDMATCH, record);
    for (std::size_t i = 0; i < listeners.size(); ++i) {
        const Entry& entry = *listeners[i];
        if (acceptsRecord(entry, *record)) {
            callListener(entry, "service", [&] { entry.onService(modified); });
        } else if (matchedBefore[i]) {
            callListener(entry, "service", [&] { entry.onService(endMatch); });
        }
    }
}

void EventListeners::bundleChanged(const BundleEvent& event) const
{
    for (const auto& entry : select(false)) {
        callListener(*entry, "bundle", [&] { entry->onBundle(event); });
    }
}

} // namespace cppmicroservices::detail
