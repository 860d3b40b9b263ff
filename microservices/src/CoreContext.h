// One framework's shared state: its bundles, its service registry, its configuration,
// and the lifecycle of the framework and of each bundle.
#pragma once

#include "BundlePrivate.h"
#include "ServiceRegistry.h"

#include "cppmicroservices/FrameworkEvent.h"
#include "cppmicroservices/FrameworkFactory.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace cppmicroservices::detail {

class FrameworkOwner;

class CoreContext : public std::enable_shared_from_this<CoreContext> {
public:
    static std::shared_ptr<CoreContext> create(FrameworkConfiguration configuration);

    const std::shared_ptr<BundlePrivate>& systemBundle() const { return systemBundle_; }
    ServiceRegistry& registry() { return *registry_; }
    EventListeners& listeners() { return *listeners_; }
    const FrameworkConfiguration& configuration() const { return configuration_; }
    std::weak_ptr<FrameworkOwner> owner() const;
    void setOwner(std::weak_ptr<FrameworkOwner> owner);

    // Whether bundles may start: the framework is starting or active.
    bool running() const;

    void initFramework();
    void startFramework();
    void stopFramework();
    FrameworkEvent waitForStop(std::chrono::milliseconds timeout);

    void startBundle(BundlePrivate& bundle);
    void stopBundle(BundlePrivate& bundle);

    std::vector<std::shared_ptr<BundlePrivate>> installBundles(const std::string& location);
    std::vector<std::shared_ptr<BundlePrivate>> bundles() const;
    std::shared_ptr<BundlePrivate> bundle(long id) const;

private:
    explicit CoreContext(FrameworkConfiguration configuration);

    // The bundles at a location, and those of them that are new.
    struct Installed {
        std::vector<std::shared_ptr<BundlePrivate>> atLocation;
        std::vector<std::shared_ptr<BundlePrivate>> added;
    };
    Installed addBundles(const std::string& location);

    // Serialises the framework's own changes of state; never held while a bundle starts or
    // stops. Each bundle serialises its own start and stop, so that activators run under no
    // lock of the framework.
    std::recursive_mutex frameworkMutex_;

    mutable std::mutex bundlesMutex_;
    std::vector<std::shared_ptr<BundlePrivate>> bundles_; // index = bundle id; 0 the system bundle

    std::mutex stopMutex_;
    std::condition_variable stopped_;

    std::shared_ptr<BundlePrivate> systemBundle_;
    std::shared_ptr<EventListeners> listeners_ = std::make_shared<EventListeners>();
    std::shared_ptr<ServiceRegistry> registry_ = std::make_shared<ServiceRegistry>(listeners_);
    const FrameworkConfiguration configuration_;
    std::weak_ptr<FrameworkOwner> owner_;
};

// Held by every Framework handle; the last one to go stops the framework while its core
// is still whole, so that activators' Stop can use their contexts.
class FrameworkOwner {
public:
    explicit FrameworkOwner(std::shared_ptr<CoreContext> core) : core_(std::move(core)) {}
    ~FrameworkOwner();
    FrameworkOwner(const FrameworkOwner&) = delete;
    FrameworkOwner& operator=(const FrameworkOwner&) = delete;

    const std::shared_ptr<CoreContext>& core() const { return core_; }

private:
    std::shared_ptr<CoreContext> core_;
};

} // namespace cppmicroservices::detail
