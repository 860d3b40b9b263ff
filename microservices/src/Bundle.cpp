#include "cppmicroservices/Bundle.h"

#include "BundlePrivate.h"
#include "CoreContext.h"

#include <stdexcept>

namespace cppmicroservices {

namespace {

const detail::BundlePrivate& checked(const std::shared_ptr<detail::BundlePrivate>& bundle)
{
    if (!bundle) {
        throw std::invalid_argument("invalid bundle");
    }
    return *bundle;
}

// Runs the framework's step for the system bundle, the bundle step for any other.
void lifecycleStep(const std::shared_ptr<detail::BundlePrivate>& bundle, void (detail::CoreContext::*frameworkStep)(),
                   void (detail::CoreContext::*bundleStep)(detail::BundlePrivate&))
{
    const auto core = checked(bundle).core();
    if (bundle == core->systemBundle()) {
        (core.get()->*frameworkStep)();
    } else {
        (core.get()->*bundleStep)(*bundle);
    }
}

} // namespace

Bundle::Bundle(std::shared_ptr<detail::BundlePrivate> bundle) : d_(std::move(bundle)) {}

Bundle::operator bool() const
{
    return d_ != nullptr;
}

bool Bundle::operator==(const Bundle& other) const
{
    return d_ == other.d_;
}

// As CppMicroServices: an invalid bundle after every valid one; bundles of one framework by
// id; bundles of different frameworks by framework.
bool Bundle::operator<(const Bundle& other) const
{
    if (!d_ || !other.d_) {
        return d_ && !other.d_;
    }
    const auto& framework = d_->framework();
    const auto& otherFramework = other.d_->framework();
    if (framework.owner_before(otherFramework) || otherFramework.owner_before(framework)) {
        return framework.owner_before(otherFramework);
    }
    return d_->id() < other.d_->id();
}

Bundle::State Bundle::GetState() const
{
    return checked(d_).state();
}

BundleContext Bundle::GetBundleContext() const
{
    auto context = checked(d_).context();
    return context ? detail::ContextAccess::make(std::move(context)) : BundleContext();
}

long Bundle::GetBundleId() const
{
    return checked(d_).id();
}

std::string Bundle::GetLocation() const
{
    return checked(d_).location();
}

std::string Bundle::GetSymbolicName() const
{
    return checked(d_).symbolicName();
}

AnyMap Bundle::GetHeaders() const
{
    return checked(d_).headers();
}

void Bundle::Start()
{
    lifecycleStep(d_, &detail::CoreContext::startFramework, &detail::CoreContext::startBundle);
}

void Bundle::Stop()
{
    lifecycleStep(d_, &detail::CoreContext::stopFramework, &detail::CoreContext::stopBundle);
}

} // namespace cppmicroservices
