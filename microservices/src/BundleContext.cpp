#include "cppmicroservices/BundleContext.h"

#include "BundlePrivate.h"
#include "CoreContext.h"
#include "FilterExpression.h"

#include <stdexcept>

namespace cppmicroservices {

namespace detail {

namespace {

const std::shared_ptr<ServiceRecord>& checkedRecord(const ServiceReferenceBase& reference)
{
    const auto& record = ReferenceAccess::record(reference);
    if (!record) {
        throw std::invalid_argument("The service reference is invalid");
    }
    return record;
}

} // namespace

std::shared_ptr<void> serviceFor(const std::shared_ptr<BundleContextPrivate>& context,
                                 const ServiceReferenceBase& reference)
{
    if (!context) {
        throwInvalidContext();
    }
    context->core();
    const InterfaceMapConstPtr services = checkedRecord(reference)->services();
    return services ? interfaceIn(*services, ReferenceAccess::interfaceId(reference)) : nullptr;
}

} // namespace detail

BundleContext::BundleContext(std::shared_ptr<detail::BundleContextPrivate> context) : d_(std::move(context)) {}

BundleContext::operator bool() const
{
    return d_ != nullptr && d_->valid();
}

bool BundleContext::operator==(const BundleContext& other) const
{
    return d_ == other.d_;
}

void BundleContext::requireValid() const
{
    if (!d_) {
        detail::throwInvalidContext();
    }
    d_->core();
}

Any BundleContext::GetProperty(const std::string& key) const
{
    requireValid();
    const auto& configuration = d_->core()->configuration();
    const auto position = configuration.find(key);
    return position != configuration.end() ? position->second : Any();
}

AnyMap BundleContext::GetProperties() const
{
    requireValid();
    AnyMap properties(AnyMap::UNORDERED_MAP);
    for (const auto& [key, value] : d_->core()->configuration()) {
        properties[key] = value;
    }
    return properties;
}

Bundle BundleContext::GetBundle() const
{
    requireValid();
    return detail::BundleAccess::make(d_->bundle());
}

Bundle BundleContext::GetBundle(long id) const
{
    requireValid();
    auto bundle = d_->core()->bundle(id);
    return bundle ? detail::BundleAccess::make(std::move(bundle)) : Bundle();
}

std::vector<Bundle> BundleContext::GetBundles() const
{
    requireValid();
    std::vector<Bundle> bundles;
    for (auto& bundle : d_->core()->bundles()) {
        bundles.push_back(detail::BundleAccess::make(std::move(bundle)));
    }
    return bundles;
}

std::vector<Bundle> BundleContext::GetBundles(const std::string& location) const
{
    requireValid();
    std::error_code error;
    const std::string canonical = std::filesystem::weakly_canonical(location, error).string();
    std::vector<Bundle> bundles;
    for (auto& bundle : d_->core()->bundles()) {
        if (bundle->location() == location || bundle->location() == canonical) {
            bundles.push_back(detail::BundleAccess::make(std::move(bundle)));
        }
    }
    return bundles;
}

ServiceRegistrationU BundleContext::RegisterService(const InterfaceMapConstPtr& service,
                                                    const ServiceProperties& properties)
{
    requireValid();
    const auto core = d_->core();
    return detail::RegistrationAccess::make(core->registry().add(service, properties, d_->bundle()));
}

std::vector<ServiceReferenceU> BundleContext::GetServiceReferences(const std::string& clazz,
                                                                   const std::string& filter) const
{
    std::vector<ServiceReferenceU> references;
    collectReferences(
        clazz, filter,
        [](void* state, const ServiceReferenceBase& found) {
            static_cast<std::vector<ServiceReferenceU>*>(state)->emplace_back(found);
        },
        &references);
    return references;
}

ServiceReferenceU BundleContext::GetServiceReference(const std::string& clazz) const
{
    const auto references = GetServiceReferences(clazz);
    return references.empty() ? ServiceReferenceU() : references.front();
}

InterfaceMapConstPtr BundleContext::GetService(const ServiceReferenceU& reference) const
{
    requireValid();
    return detail::checkedRecord(reference)->services();
}

std::vector<Bundle> BundleContext::InstallBundles(const std::string& location) const
{
    requireValid();
    std::vector<Bundle> bundles;
    for (auto& bundle : d_->core()->installBundles(location)) {
        bundles.push_back(detail::BundleAccess::make(std::move(bundle)));
    }
    return bundles;
}

ListenerToken BundleContext::AddServiceListener(const ServiceListener& listener, const std::string& filter)
{
    requireValid();
    auto parsed = filter.empty() ? nullptr : std::make_shared<const detail::FilterNode>(detail::parseFilter(filter));
    return ListenerToken(d_->core()->listeners().addServiceListener(d_.get(), listener, std::move(parsed)));
}

ListenerToken BundleContext::AddBundleListener(const BundleListener& listener)
{
    requireValid();
    return ListenerToken(d_->core()->listeners().addBundleListener(d_.get(), listener));
}

void BundleContext::RemoveListener(ListenerToken token)
{
    requireValid();
    if (token) {
        d_->core()->listeners().remove(token.Id());
    }
}

void BundleContext::collectReferences(const std::string& interfaceId, const std::string& filter,
                                      detail::ReferenceSink sink, void* state) const
{
    if (!d_) {
        detail::throwInvalidContext();
    }
    const auto core = d_->core();
    const auto parsed = filter.empty() ? nullptr : detail::cachedFilter(filter);
    core->registry().collect(interfaceId, parsed.get(), sink, state);
}

} // namespace cppmicroservices
