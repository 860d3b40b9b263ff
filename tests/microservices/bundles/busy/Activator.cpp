// An activator that uses the framework while its bundle starts and stops: it installs and
// starts the bundle named by the framework property "busy.peer", looks up the Greeter that
// bundle registers, registers and unregisters a passing Greeter, and publishes its own
// Greeter with what it saw and how many times it was started. Stop stops the peer.
#include "../Greeter.h"

#include <cppmicroservices/Bundle.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

std::atomic<int> starts{0};

class BusyActivator : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override
    {
        const int count = ++starts;
        const auto peerLocation = cppmicroservices::any_cast<std::string>(context.GetProperty("busy.peer"));
        for (auto peer : context.InstallBundles(peerLocation)) {
            peer.Start();
            peer_ = peer;
        }
        const auto reference = context.GetServiceReference<test_bundles::Greeter>();
        const std::string seen = reference ? context.GetService(reference)->greet() : "nothing";

        auto passing = context.RegisterService<test_bundles::Greeter>(
            std::make_shared<test_bundles::FixedGreeter>("passing"), {{"greeting", std::string("passing")}});
        passing.Unregister();

        // Long enough for a second thread starting this bundle to arrive meanwhile.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        const std::string greeting = "busy saw " + seen + ", start " + std::to_string(count);
        context.RegisterService<test_bundles::Greeter>(std::make_shared<test_bundles::FixedGreeter>(greeting),
                                                       {{"greeting", greeting}});
    }

    void Stop(cppmicroservices::BundleContext) override
    {
        if (peer_) {
            peer_.Stop();
        }
    }

private:
    cppmicroservices::Bundle peer_;
};

} // namespace

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(BusyActivator, busy)
