// The framework: the system bundle (id 0) that owns the service registry and every
// installed bundle. The last Framework handle to go stops the framework.
#pragma once

#include "cppmicroservices/Bundle.h"
#include "cppmicroservices/FrameworkEvent.h"

#include <chrono>
#include <memory>

namespace cppmicroservices {

class FrameworkFactory;

namespace detail {
class FrameworkOwner;
}

class Framework : public Bundle {
public:
    // The framework whose system bundle this is; throws std::invalid_argument for another
    // bundle or a framework that no longer exists.
    explicit Framework(const Bundle& systemBundle);

    // Makes the framework's context valid so that services can be registered and bundles
    // installed; the state becomes STARTING.
    void Init();
    // Init when needed, then ACTIVE.
    void Start();
    // Announces BUNDLE_STOPPING for the framework (the system bundle), then stops every
    // active bundle (the most recently installed first), unregisters every service and
    // invalidates every context; bundles stay installed.
    void Stop();
    // Blocks until the framework has stopped or the timeout passed (zero waits without
    // limit): FRAMEWORK_STOPPED, or FRAMEWORK_WAIT_TIMEDOUT. Returns at once when it is not
    // starting, active or stopping: FRAMEWORK_STOPPED once it has run, FRAMEWORK_ERROR when
    // it was never started, as CppMicroServices.
    FrameworkEvent WaitForStop(const std::chrono::milliseconds& timeout);

private:
    friend class FrameworkFactory;

    explicit Framework(std::shared_ptr<detail::FrameworkOwner> owner);

    std::shared_ptr<detail::FrameworkOwner> owner_;
};

} // namespace cppmicroservices
