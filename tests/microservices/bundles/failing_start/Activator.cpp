// Registers a service and then fails, to show that a failed start leaves nothing behind.
#include "../Greeter.h"

#include <stdexcept>

namespace {

struct FailingActivator : test_bundles::GreeterActivator {
    FailingActivator() : GreeterActivator("never seen") {}

    void Start(cppmicroservices::BundleContext context) override
    {
        GreeterActivator::Start(context);
        throw std::runtime_error("no greeting today");
    }
};

} // namespace

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(FailingActivator, failing_start)
