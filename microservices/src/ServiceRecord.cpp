#include "ServiceRecord.h"

namespace cppmicroservices::detail {

ServiceRecord::ServiceRecord(long id, InterfaceMapConstPtr services, std::vector<std::string> interfaces,
                             PropertyTable properties, int ranking, std::weak_ptr<BundlePrivate> bundle,
                             std::weak_ptr<ServiceRegistry> registry)
    : id_(id),
      interfaces_(std::move(interfaces)),
      bundle_(std::move(bundle)),
      registry_(std::move(registry)),
      services_(std::move(services)),
      properties_(std::move(properties)),
      ranking_(ranking)
{
}

std::string_view ServiceRecord::interfaceNamed(std::string_view interfaceId) const
{
    interfaceId = withoutGlobalScope(interfaceId);
    for (const std::string& name : interfaces_) {
        if (name == interfaceId) {
            return name;
        }
    }
    return {};
}

int ServiceRecord::ranking() const
{
    const std::lock_guard lock(mutex_);
    return ranking_;
}

Any ServiceRecord::property(std::string_view key) const
{
    const std::lock_guard lock(mutex_);
    const Any* value = properties_.find(key);
    return value ? *value : Any();
}

std::vector<std::string> ServiceRecord::propertyKeys() const
{
    const std::lock_guard lock(mutex_);
    return properties_.keys();
}

bool ServiceRecord::matches(const FilterNode& filter) const
{
    const std::lock_guard lock(mutex_);
    return matchesInRegistry(filter);
}

InterfaceMapConstPtr ServiceRecord::services() const
{
    const std::lock_guard lock(mutex_);
    return services_;
}

bool ServiceRecord::matchesInRegistry(const FilterNode& filter) const
{
    return evaluateFilter(filter, properties_);
}

void ServiceRecord::replaceProperties(PropertyTable properties, int ranking)
{
    const std::lock_guard lock(mutex_);
    properties_ = std::move(properties);
    ranking_ = ranking;
}

InterfaceMapConstPtr ServiceRecord::withdraw()
{
    registered_.store(false, std::memory_order_release);
    const std::lock_guard lock(mutex_);
    return std::move(services_);
}

} // namespace cppmicroservices::detail
