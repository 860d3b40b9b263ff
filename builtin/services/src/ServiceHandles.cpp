#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>

#include <atomic>
#include <memory>

namespace Velloc::builtin::builtinreg {

namespace {

// The handle of a service, published once: the first lookup to finish wins and the others
// drop their answer. No lock or one-time guard is held while looking up, because the
// lookup may start the builtin-services bundle, which waits for a module start in
// progress on another thread, and that module's activator may be waiting for this very
// handle. The handle is never freed.
template <class Service>
const std::shared_ptr<Service>& handleOf() {
    static std::atomic<const std::shared_ptr<Service>*> published{nullptr};
    if (const auto* handle = published.load(std::memory_order_acquire)) {
        return *handle;
    }
    auto found = std::make_unique<const std::shared_ptr<Service>>(findService<Service>());
    const std::shared_ptr<Service>* earlier = nullptr;
    if (published.compare_exchange_strong(earlier, found.get(), std::memory_order_acq_rel,
                                          std::memory_order_acquire)) {
        return *found.release();
    }
    return *earlier;
}

} // namespace

const std::shared_ptr<StringSupport>& getStringSupport() { return handleOf<StringSupport>(); }

const std::shared_ptr<IOCOSRegWrapper>& getOCOSRegWrapper() { return handleOf<IOCOSRegWrapper>(); }

const std::shared_ptr<ILxeObjectRegister>& getLxeObjectRegister() { return handleOf<ILxeObjectRegister>(); }

} // namespace Velloc::builtin::builtinreg
