// The state behind a Bundle handle: its manifest, state, context, library and activator.
#pragma once

#include "BundleContextPrivate.h"
#include "BundleLibrary.h"
#include "BundleManifest.h"

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/BundleActivator.h"
#include "cppmicroservices/BundleEvent.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace cppmicroservices::detail {

class CoreContext;

class BundlePrivate : public std::enable_shared_from_this<BundlePrivate> {
public:
    // An installed bundle.
    BundlePrivate(long id, BundleManifest manifest, std::weak_ptr<CoreContext> core);
    // The system bundle, id 0, which stands for the framework itself.
    explicit BundlePrivate(std::weak_ptr<CoreContext> core);

    long id() const { return id_; }
    const std::string& location() const { return location_; }
    const std::string& symbolicName() const { return symbolicName_; }
    const AnyMap& headers() const { return headers_; }
    Bundle::State state() const { return state_.load(std::memory_order_acquire); }
    void setState(Bundle::State state) { state_.store(state, std::memory_order_release); }

    // Throws std::runtime_error when the framework no longer exists.
    std::shared_ptr<CoreContext> core() const;
    // The framework, which may be gone; for ordering bundles of different frameworks.
    const std::weak_ptr<CoreContext>& framework() const { return core_; }

    // The current context, null while the bundle is not starting, active or stopping.
    std::shared_ptr<BundleContextPrivate> context() const;
    std::shared_ptr<BundleContextPrivate> openContext();
    void closeContext();

    // Lifecycle of an installed bundle, serialised per bundle: a second thread starting the
    // same bundle waits and then finds it active. The activator runs under this bundle's
    // lock only, so it may use the registry and start or stop other bundles.
    void start(CoreContext& core);
    void stop(CoreContext& core);

private:
    using CreateActivator = BundleActivator* (*)();
    using DestroyActivator = void (*)(BundleActivator*);

    void createActivator();
    // Runs the activator's Stop and deactivates, announcing both; under lifecycleMutex_.
    void stopLocked(CoreContext& core);
    // Invalidates the context, unregisters the bundle's services, destroys the activator.
    void deactivate(CoreContext& core);
    void announce(CoreContext& core, BundleEvent::Type type);

    const long id_;
    const std::string location_;
    const std::string symbolicName_;
    const AnyMap headers_;
    const bool hasActivator_;
    const std::weak_ptr<CoreContext> core_;
    std::atomic<Bundle::State> state_;
    // Recursive: an activator may start or stop its own bundle, which then does nothing.
    std::recursive_mutex lifecycleMutex_;

    mutable std::mutex contextMutex_;
    std::shared_ptr<BundleContextPrivate> context_;

    std::optional<BundleLibrary> library_;
    BundleActivator* activator_ = nullptr;
    DestroyActivator destroyActivator_ = nullptr;
};

struct BundleAccess {
    static Bundle make(std::shared_ptr<BundlePrivate> bundle) { return Bundle(std::move(bundle)); }
    static const std::shared_ptr<BundlePrivate>& get(const Bundle& bundle) { return bundle.d_; }
};

} // namespace cppmicroservices::detail
