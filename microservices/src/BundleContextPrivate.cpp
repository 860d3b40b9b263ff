#include "BundleContextPrivate.h"

#include <stdexcept>

namespace cppmicroservices::detail {

BundleContextPrivate::BundleContextPrivate(std::weak_ptr<BundlePrivate> bundle, std::weak_ptr<CoreContext> core)
    : bundle_(std::move(bundle)), core_(std::move(core))
{
}

void BundleContextPrivate::invalidate()
{
    valid_.store(false, std::memory_order_release);
}

bool BundleContextPrivate::valid() const
{
    return valid_.load(std::memory_order_acquire) && !core_.expired();
}

std::shared_ptr<CoreContext> BundleContextPrivate::core() const
{
    auto core = core_.lock();
    if (!core || !valid_.load(std::memory_order_acquire)) {
        throwInvalidContext();
    }
    return core;
}

std::shared_ptr<BundlePrivate> BundleContextPrivate::bundle() const
{
    auto bundle = bundle_.lock();
    if (!bundle || !valid_.load(std::memory_order_acquire)) {
        throwInvalidContext();
    }
    return bundle;
}

void throwInvalidContext()
{
    throw std::runtime_error("The bundle context is no longer valid");
}

} // namespace cppmicroservices::detail
