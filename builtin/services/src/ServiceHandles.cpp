#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>

#include <cppmicroservices/ServiceTracker.h>

#include <atomic>
#include <memory>

namespace Velloc::builtin::builtinreg {

namespace {

// The tracker of one service, null when no framework runs.
template <class Service>
struct TrackedService {
    std::unique_ptr<cppmicroservices::ServiceTracker<Service>> tracker;
};

template <class Service>
TrackedService<Service> openTracker() {
    loadBuiltinServices();
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) {
        return {};
    }
    auto tracker = std::make_unique<cppmicroservices::ServiceTracker<Service>>(framework->GetBundleContext());
    tracker->Open();
    return {std::move(tracker)};
}

// The tracker is published once: the first to finish opening one wins and the others close
// theirs. No lock or one-time guard is held while opening, because opening may start the
// builtin-services bundle, which waits for a module start in progress on another thread,
// and that module's activator may be waiting for this very handle. The tracker lives until
// the process exits.
template <class Service>
Service* handleOf() {
    static std::atomic<const TrackedService<Service>*> published{nullptr};
    const TrackedService<Service>* tracked = published.load(std::memory_order_acquire);
    if (tracked == nullptr) {
        auto opened = std::make_unique<const TrackedService<Service>>(openTracker<Service>());
        if (published.compare_exchange_strong(tracked, opened.get(), std::memory_order_acq_rel,
                                              std::memory_order_acquire)) {
            tracked = opened.release();
        }
    }
    return tracked->tracker ? tracked->tracker->BorrowService() : nullptr;
}

} // namespace

StringSupport* getStringSupport() { return handleOf<StringSupport>(); }

IOCOSRegWrapper* getOCOSRegWrapper() { return handleOf<IOCOSRegWrapper>(); }

ILxeObjectRegister* getLxeObjectRegister() { return handleOf<ILxeObjectRegister>(); }

} // namespace Velloc::builtin::builtinreg
