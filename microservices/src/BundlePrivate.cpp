#include "BundlePrivate.h"

#include "CoreContext.h"

#include "cppmicroservices/Constants.h"

#include <stdexcept>

namespace cppmicroservices::detail {

namespace {

AnyMap systemHeaders()
{
    AnyMap headers(AnyMap::UNORDERED_MAP_CASEINSENSITIVE_KEYS);
    headers["symbolic_name"] = Constants::SYSTEM_BUNDLE_SYMBOLICNAME;
    return headers;
}

std::string describe(const std::exception_ptr& failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "an exception that is not a std::exception";
    }
}

} // namespace

BundlePrivate::BundlePrivate(long id, BundleManifest manifest, std::weak_ptr<CoreContext> core)
    : id_(id),
      location_(manifest.directory.string()),
      symbolicName_(manifest.symbolicName),
      headers_(std::move(manifest.headers)),
      hasActivator_(manifest.hasActivator),
      core_(std::move(core)),
      state_(Bundle::STATE_INSTALLED),
      library_(std::in_place, std::move(manifest.library))
{
}

BundlePrivate::BundlePrivate(std::weak_ptr<CoreContext> core)
    : id_(0),
      location_(Constants::SYSTEM_BUNDLE_LOCATION),
      symbolicName_(Constants::SYSTEM_BUNDLE_SYMBOLICNAME),
      headers_(systemHeaders()),
      hasActivator_(false),
      core_(std::move(core)),
      state_(Bundle::STATE_INSTALLED)
{
}

std::shared_ptr<CoreContext> BundlePrivate::core() const
{
    auto core = core_.lock();
    if (!core) {
        throw std::runtime_error("the framework of bundle '" + symbolicName_ + "' no longer exists");
    }
    return core;
}

std::shared_ptr<BundleContextPrivate> BundlePrivate::context() const
{
    const std::lock_guard lock(contextMutex_);
    return context_;
}

std::shared_ptr<BundleContextPrivate> BundlePrivate::openContext()
{
    auto context = std::make_shared<BundleContextPrivate>(weak_from_this(), core_);
    const std::lock_guard lock(contextMutex_);
    context_ = context;
    return context;
}

void BundlePrivate::closeContext()
{
    std::shared_ptr<BundleContextPrivate> closed;
    {
        const std::lock_guard lock(contextMutex_);
        closed.swap(context_);
    }
    if (closed) {
        closed->invalidate();
        if (const auto core = core_.lock()) {
            core->listeners().removeAllOf(closed.get());
        }
    }
}

void BundlePrivate::start(CoreContext& core)
{
    const std::lock_guard lock(lifecycleMutex_);
    const Bundle::State current = state();
    if (current == Bundle::STATE_ACTIVE || current == Bundle::STATE_STARTING) {
        return;
    }
    if (!core.running()) {
        throw std::runtime_error("cannot start bundle '" + symbolicName_ + "': the framework is not running");
    }
    library_->load(symbolicName_);
    if (hasActivator_) {
        createActivator();
    }
    setState(Bundle::STATE_STARTING);
    const auto context = openContext();
    announce(core, BundleEvent::BUNDLE_STARTING);
    try {
        if (activator_ != nullptr) {
            activator_->Start(ContextAccess::make(context));
        }
    } catch (...) {
        // As CppMicroServices: the bundle is seen stopping and stopped, and ends resolved.
        const std::string reason = describe(std::current_exception());
        setState(Bundle::STATE_STOPPING);
        announce(core, BundleEvent::BUNDLE_STOPPING);
        deactivate(core);
        announce(core, BundleEvent::BUNDLE_STOPPED);
        throw std::runtime_error("bundle '" + symbolicName_ + "' failed to start: " + reason);
    }
    if (!core.running()) {
        // The framework stopped while the activator ran: from this thread (the activator or
        // a listener stopped it, and its stop passed this starting bundle by), or from
        // another one that now waits for this bundle. Either way it must not end active,
        // and its services must not outlive the framework's.
        try {
            stopLocked(core);
        } catch (const std::exception&) {
            // Stopped regardless, as the framework's stop does.
        }
        throw std::runtime_error("bundle '" + symbolicName_ + "' did not start: the framework stopped meanwhile");
    }
    setState(Bundle::STATE_ACTIVE);
    announce(core, BundleEvent::BUNDLE_STARTED);
}

void BundlePrivate::stop(CoreContext& core)
{
    const std::lock_guard lock(lifecycleMutex_);
    if (state() != Bundle::STATE_ACTIVE) {
        return;
    }
    stopLocked(core);
}

void BundlePrivate::stopLocked(CoreContext& core)
{
    setState(Bundle::STATE_STOPPING);
    announce(core, BundleEvent::BUNDLE_STOPPING);
    std::exception_ptr failure;
    if (activator_ != nullptr) {
        try {
            activator_->Stop(ContextAccess::make(context()));
        } catch (...) {
            failure = std::current_exception();
        }
    }
    deactivate(core);
    announce(core, BundleEvent::BUNDLE_STOPPED);
    if (failure) {
        throw std::runtime_error("bundle '" + symbolicName_ + "' failed to stop: " + describe(failure));
    }
}

void BundlePrivate::announce(CoreContext& core, BundleEvent::Type type)
{
    core.listeners().bundleChanged(BundleEvent(type, BundleAccess::make(shared_from_this())));
}

void BundlePrivate::createActivator()
{
    const std::string createName = "builtin2_create_activator_" + symbolicName_;
    const std::string destroyName = "builtin2_destroy_activator_" + symbolicName_;
    const auto create = reinterpret_cast<CreateActivator>(library_->symbol(createName));
    destroyActivator_ = reinterpret_cast<DestroyActivator>(library_->symbol(destroyName));
    if (create == nullptr || destroyActivator_ == nullptr) {
        throw std::runtime_error("the library '" + library_->path().string() + "' of bundle '" + symbolicName_ +
                                 "' does not export " + (create == nullptr ? createName : destroyName));
    }
    activator_ = create();
    if (activator_ == nullptr) {
        throw std::runtime_error(createName + " in '" + library_->path().string() + "' returned no activator");
    }
}

void BundlePrivate::deactivate(CoreContext& core)
{
    // The bundle's own listeners still hear its services go; then they go with the context.
    core.registry().removeAllOf(shared_from_this());
    closeContext();
    if (activator_ != nullptr) {
        destroyActivator_(activator_);
        activator_ = nullptr;
    }
    setState(Bundle::STATE_RESOLVED);
}

} // namespace cppmicroservices::detail
