#include "../Greeter.h"

namespace {

struct ActivatorA : test_bundles::GreeterActivator {
    ActivatorA() : GreeterActivator("hello from a") {}
};

} // namespace

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(ActivatorA, greeter_a)
