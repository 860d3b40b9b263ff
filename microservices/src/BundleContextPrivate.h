// The state behind a BundleContext: which bundle and framework it belongs to, and whether
// it is still valid.
#pragma once

#include "cppmicroservices/BundleContext.h"

#include <atomic>
#include <memory>

namespace cppmicroservices::detail {

class BundlePrivate;
class CoreContext;

class BundleContextPrivate {
public:
    BundleContextPrivate(std::weak_ptr<BundlePrivate> bundle, std::weak_ptr<CoreContext> core);

    void invalidate();
    bool valid() const;

    // Both throw std::runtime_error("The bundle context is no longer valid") once the
    // context is invalidated or its framework is gone.
    std::shared_ptr<CoreContext> core() const;
    std::shared_ptr<BundlePrivate> bundle() const;

private:
    std::atomic<bool> valid_{true};
    const std::weak_ptr<BundlePrivate> bundle_;
    const std::weak_ptr<CoreContext> core_;
};

[[noreturn]] void throwInvalidContext();

struct ContextAccess {
    static BundleContext make(std::shared_ptr<BundleContextPrivate> context)
    {
        return BundleContext(std::move(context));
    }
};

} // namespace cppmicroservices::detail
