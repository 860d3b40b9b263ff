#include "../Greeter.h"

namespace {

struct ActivatorB : test_bundles::GreeterActivator {
    ActivatorB() : GreeterActivator("hello from b") {}
};

} // namespace

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(ActivatorB, greeter_b)
