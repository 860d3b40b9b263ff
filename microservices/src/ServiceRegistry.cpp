#include "ServiceRegistry.h"

#include "cppmicroservices/Constants.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <mutex>
#include <stdexcept>

namespace cppmicroservices::detail {

namespace {

// Lookup order: higher ranking first, then the earlier registration.
bool precedes(const std::shared_ptr<ServiceRecord>& left, const std::shared_ptr<ServiceRecord>& right)
{
    if (left->rankingInRegistry() != right->rankingInRegistry()) {
        return left->rankingInRegistry() > right->rankingInRegistry();
    }
    return left->id() < right->id();
}

std::optional<long long> integerIn(const Any& value)
{
    if (const auto* number = any_cast<int>(&value)) {
        return *number;
    }
    if (const auto* number = any_cast<long>(&value)) {
        return *number;
    }
    if (const auto* number = any_cast<long long>(&value)) {
        return *number;
    }
    if (const auto* number = any_cast<short>(&value)) {
        return *number;
    }
    if (const auto* number = any_cast<unsigned>(&value)) {
        return *number;
    }
    return std::nullopt;
}

int rankingOf(const Any* value)
{
    if (value == nullptr) {
        return 0;
    }
    const auto ranking = integerIn(*value);
    if (!ranking || *ranking < std::numeric_limits<int>::min() || *ranking > std::numeric_limits<int>::max()) {
        throw std::invalid_argument("the property " + Constants::SERVICE_RANKING +
                                    " must be an integer in the range of int, not " +
                                    demangledName(value->Type()) + " '" + value->ToStringNoExcept() + "'");
    }
    return static_cast<int>(*ranking);
}

} // namespace

PropertyTable ServiceRegistry::propertyTable(long id, const std::vector<std::string>& interfaces,
                                             const ServiceProperties& properties, int& ranking) const
{
    PropertyTable table;
    for (const auto& [key, value] : properties) {
        table.set(key, value);
    }
    ranking = rankingOf(table.find(Constants::SERVICE_RANKING));
    table.set(Constants::SERVICE_RANKING, ranking);
    table.set(Constants::OBJECTCLASS, interfaces);
    table.set(Constants::SERVICE_ID, id);
    table.set(Constants::SERVICE_SCOPE, Constants::SCOPE_SINGLETON);
    return table;
}

std::shared_ptr<ServiceRecord> ServiceRegistry::add(const InterfaceMapConstPtr& services,
                                                    const ServiceProperties& properties,
                                                    const std::shared_ptr<BundlePrivate>& owner)
{
    if (!services || services->empty()) {
        throw std::invalid_argument("a service must be registered under at least one interface");
    }
    std::vector<std::string> interfaces;
    for (const auto& [name, object] : *services) {
        if (!object) {
            throw std::invalid_argument("the service object for interface " + name + " is null");
        }
        interfaces.emplace_back(withoutGlobalScope(name));
    }
    std::shared_ptr<ServiceRecord> record;
    {
        const std::unique_lock lock(mutex_);
        const long id = nextId_;
        int ranking = 0;
        PropertyTable table = propertyTable(id, interfaces, properties, ranking);
        record = std::make_shared<ServiceRecord>(id, services, std::move(interfaces), std::move(table), ranking,
                                                 owner, weak_from_this());
        ++nextId_;
        index(record);
    }
    listeners_->serviceChanged(ServiceEvent::SERVICE_REGISTERED, record);
    return record;
}

void ServiceRegistry::remove(ServiceRecord& record)
{
    std::shared_ptr<ServiceRecord> shared;
    {
        const std::shared_lock lock(mutex_);
        const auto position =
            std::find_if(all_.begin(), all_.end(), [&record](const auto& entry) { return entry.get() == &record; });
        if (position != all_.end()) {
            shared = *position;
        }
    }
    if (!shared || !shared->claimUnregistering()) {
        throw std::logic_error(ALREADY_UNREGISTERED);
    }
    unregisterClaimed({shared});
}

void ServiceRegistry::setProperties(ServiceRecord& record, const ServiceProperties& properties)
{
    const auto listeners = listeners_->serviceListeners();
    std::vector<bool> matchedBefore;
    for (const auto& listener : listeners) {
        matchedBefore.push_back(acceptsRecord(*listener, record));
    }
    std::shared_ptr<ServiceRecord> shared;
    {
        const std::unique_lock lock(mutex_);
        const auto position =
            std::find_if(all_.begin(), all_.end(), [&record](const auto& entry) { return entry.get() == &record; });
        if (position == all_.end()) {
            throw std::logic_error(ALREADY_UNREGISTERED);
        }
        shared = *position;
        int ranking = 0;
        PropertyTable table = propertyTable(record.id(), record.interfaces(), properties, ranking);
        unindex(record);
        record.replaceProperties(std::move(table), ranking);
        index(shared);
    }
    listeners_->serviceModified(listeners, matchedBefore, shared);
}

void ServiceRegistry::removeAllOf(const std::shared_ptr<BundlePrivate>& owner)
{
    RecordList owned;
    {
        const std::shared_lock lock(mutex_);
        for (const auto& record : all_) {
            if (!record->bundle().owner_before(owner) && !owner.owner_before(record->bundle())) {
                owned.push_back(record);
            }
        }
    }
    unregisterAll(owned);
}

void ServiceRegistry::removeAll()
{
    RecordList all;
    {
        const std::shared_lock lock(mutex_);
        all = all_;
    }
    unregisterAll(all);
}

void ServiceRegistry::unregisterAll(const RecordList& records)
{
    RecordList claimed;
    std::copy_if(records.begin(), records.end(), std::back_inserter(claimed),
                 [](const auto& record) { return record->claimUnregistering(); });
    unregisterClaimed(claimed);
}

void ServiceRegistry::unregisterClaimed(const RecordList& records)
{
    // Listeners may still use the services while they hear of their going.
    for (const auto& record : records) {
        listeners_->serviceChanged(ServiceEvent::SERVICE_UNREGISTERING, record);
    }
    {
        const std::unique_lock lock(mutex_);
        for (const auto& record : records) {
            unindex(*record);
        }
    }
    // Service objects are released here, outside the lock: their destructors may call
    // back into the registry.
    for (const auto& record : records) {
        record->withdraw();
    }
}

void ServiceRegistry::collect(std::string_view interfaceId, const FilterNode* filter, ReferenceSink sink,
                              void* state) const
{
    interfaceId = withoutGlobalScope(interfaceId);
    const std::shared_lock lock(mutex_);
    const RecordList* records = &all_;
    if (!interfaceId.empty()) {
        const auto position = byInterface_.find(interfaceId);
        if (position == byInterface_.end()) {
            return;
        }
        records = &position->second;
    }
    for (const auto& record : *records) {
        if (filter == nullptr || record->matchesInRegistry(*filter)) {
            sink(state, ReferenceAccess::make(record, interfaceId.empty() ? std::string_view(record->interfaces().front())
                                                                          : record->interfaceNamed(interfaceId)));
        }
    }
}

void ServiceRegistry::index(const std::shared_ptr<ServiceRecord>& record)
{
    const auto insertSorted = [&record](RecordList& list) {
        list.insert(std::upper_bound(list.begin(), list.end(), record, precedes), record);
    };
    insertSorted(all_);
    for (const std::string& name : record->interfaces()) {
        insertSorted(byInterface_[name]);
    }
}

void ServiceRegistry::unindex(const ServiceRecord& record)
{
    const auto eraseFrom = [&record](RecordList& list) {
        std::erase_if(list, [&record](const auto& entry) { return entry.get() == &record; });
    };
    eraseFrom(all_);
    for (const std::string& name : record.interfaces()) {
        const auto position = byInterface_.find(name);
        if (position != byInterface_.end()) {
            eraseFrom(position->second);
            if (position->second.empty()) {
                byInterface_.erase(position);
            }
        }
    }
}

} // namespace cppmicroservices::detail
