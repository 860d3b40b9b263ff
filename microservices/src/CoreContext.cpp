#include "CoreContext.h"

#include <algorithm>
#include <stdexcept>

namespace cppmicroservices::detail {

std::shared_ptr<CoreContext> CoreContext::create(FrameworkConfiguration configuration)
{
    std::shared_ptr<CoreContext> core(new CoreContext(std::move(configuration)));
    core->systemBundle_ = std::make_shared<BundlePrivate>(core);
    core->bundles_.push_back(core->systemBundle_);
    return core;
}

CoreContext::CoreContext(FrameworkConfiguration configuration) : configuration_(std::move(configuration)) {}

std::weak_ptr<FrameworkOwner> CoreContext::owner() const
{
    const std::lock_guard lock(bundlesMutex_);
    return owner_;
}

void CoreContext::setOwner(std::weak_ptr<FrameworkOwner> owner)
{
    const std::lock_guard lock(bundlesMutex_);
    owner_ = std::move(owner);
}

bool CoreContext::running() const
{
    const Bundle::State state = systemBundle_->state();
    return state == Bundle::STATE_STARTING || state == Bundle::STATE_ACTIVE;
}

void CoreContext::initFramework()
{
    const std::lock_guard lock(frameworkMutex_);
    if (running()) {
        return;
    }
    if (systemBundle_->state() == Bundle::STATE_STOPPING) {
        throw std::runtime_error("cannot start the framework while it is stopping");
    }
    systemBundle_->openContext();
    systemBundle_->setState(Bundle::STATE_STARTING);
}

void CoreContext::startFramework()
{
    const std::lock_guard lock(frameworkMutex_);
    initFramework();
    systemBundle_->setState(Bundle::STATE_ACTIVE);
}

// The bundles stop under no lock of the framework: a bundle's start may stop the framework
// (from its activator or a listener) while holding that bundle's lock, so holding the
// framework's lock while taking a bundle's would invert the order. A stop that finds the
// framework stopping already, on this thread or another, returns at once: waiting could
// wait for a bundle whose start is waiting for it. WaitForStop waits for the end.
void CoreContext::stopFramework()
{
    {
        const std::lock_guard lock(frameworkMutex_);
        if (!running()) {
            return;
        }
        systemBundle_->setState(Bundle::STATE_STOPPING);
    }
    // As CppMicroServices: the framework's own STOPPING comes before any bundle stops.
    listeners_->bundleChanged(BundleEvent(BundleEvent::BUNDLE_STOPPING, BundleAccess::make(systemBundle_)));
    auto installed = bundles();
    std::reverse(installed.begin(), installed.end());
    for (const auto& bundle : installed) {
        if (bundle != systemBundle_) {
            try {
                bundle->stop(*this);
            } catch (const std::exception&) {
                // A bundle that fails to stop is stopped regardless; the framework goes on.
            }
        }
    }
    {
        const std::lock_guard lock(frameworkMutex_);
        registry_->removeAll();
        systemBundle_->closeContext();
        const std::lock_guard stopLock(stopMutex_);
        systemBundle_->setState(Bundle::STATE_RESOLVED);
    }
    stopped_.notify_all();
}

FrameworkEvent CoreContext::waitForStop(std::chrono::milliseconds timeout)
{
    const auto isStopped = [this] {
        const Bundle::State state = systemBundle_->state();
        return state != Bundle::STATE_STARTING && state != Bundle::STATE_ACTIVE && state != Bundle::STATE_STOPPING;
    };
    std::unique_lock lock(stopMutex_);
    if (systemBundle_->state() == Bundle::STATE_INSTALLED) {
        // Never initialised, so never stopped either: as CppMicroServices, an error.
        return FrameworkEvent(FrameworkEvent::FRAMEWORK_ERROR, BundleAccess::make(systemBundle_),
                              "the framework was never started");
    }
    if (timeout.count() == 0) {
        stopped_.wait(lock, isStopped);
    } else if (!stopped_.wait_for(lock, timeout, isStopped)) {
        return FrameworkEvent(FrameworkEvent::FRAMEWORK_WAIT_TIMEDOUT, BundleAccess::make(systemBundle_),
                              "wait for stop timed out");
    }
    return FrameworkEvent(FrameworkEvent::FRAMEWORK_STOPPED, BundleAccess::make(systemBundle_), "Framework Stopped");
}

void CoreContext::startBundle(BundlePrivate& bundle)
{
    bundle.start(*this);
}

void CoreContext::stopBundle(BundlePrivate& bundle)
{
    bundle.stop(*this);
}

CoreContext::Installed CoreContext::addBundles(const std::string& location)
{
    std::vector<BundleManifest> manifests;
    for (const auto& directory : bundleDirectoriesAt(location)) {
        manifests.push_back(readBundleManifest(directory));
    }

    const std::lock_guard lock(bundlesMutex_);
    std::vector<std::shared_ptr<BundlePrivate>> result(manifests.size());
    std::vector<std::string> newNames;
    for (std::size_t i = 0; i < manifests.size(); ++i) {
        const BundleManifest& manifest = manifests[i];
        for (const auto& bundle : bundles_) {
            if (bundle->location() == manifest.directory.string()) {
                result[i] = bundle;
            } else if (bundle->symbolicName() == manifest.symbolicName) {
                throw std::runtime_error("cannot install bundle '" + manifest.symbolicName + "' from '" +
                                         manifest.directory.string() + "': a bundle of that name is installed from '" +
                                         bundle->location() + "'");
            }
        }
        if (!result[i] && std::find(newNames.begin(), newNames.end(), manifest.symbolicName) != newNames.end()) {
            throw std::runtime_error("cannot install bundles from '" + location + "': two bundles are named '" +
                                     manifest.symbolicName + "'");
        }
        newNames.push_back(manifest.symbolicName);
    }
    std::vector<std::shared_ptr<BundlePrivate>> installed;
    for (std::size_t i = 0; i < manifests.size(); ++i) {
        if (!result[i]) {
            result[i] = std::make_shared<BundlePrivate>(static_cast<long>(bundles_.size()), std::move(manifests[i]),
                                                        weak_from_this());
            bundles_.push_back(result[i]);
            installed.push_back(result[i]);
        }
    }
    return {result, installed};
}

std::vector<std::shared_ptr<BundlePrivate>> CoreContext::installBundles(const std::string& location)
{
    auto [result, installed] = addBundles(location);
    for (const auto& bundle : installed) {
        listeners_->bundleChanged(BundleEvent(BundleEvent::BUNDLE_INSTALLED, BundleAccess::make(bundle)));
    }
    return result;
}

std::vector<std::shared_ptr<BundlePrivate>> CoreContext::bundles() const
{
    const std::lock_guard lock(bundlesMutex_);
    return bundles_;
}

std::shared_ptr<BundlePrivate> CoreContext::bundle(long id) const
{
    const std::lock_guard lock(bundlesMutex_);
    return id >= 0 && static_cast<std::size_t>(id) < bundles_.size() ? bundles_[static_cast<std::size_t>(id)]
                                                                      : nullptr;
}

FrameworkOwner::~FrameworkOwner()
{
    core_->stopFramework();
}

} // namespace cppmicroservices::detail
