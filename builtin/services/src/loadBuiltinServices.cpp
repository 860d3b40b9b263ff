#include <builtin/services/ModuleHelpers.hpp>
#include <builtin/services/findService.hpp>

#include <foundation/log/Channel.hpp>

#include <atomic>
#include <exception>
#include <string>

namespace Velloc::builtin::builtinreg {

namespace {

void startBuiltinServicesBundle() {
    const std::filesystem::path bundle = getBuiltinLibraryPath(u"bin/lnxv64/builtinservices");
    try {
        foundation::cppmicroservices::installAndStart(bundle, "(started-in=builtin2/builtin)");
    } catch (const std::exception& error) {
        static const foundation::log::Channel& channel = foundation::log::channel("builtinservice::startBundle");
        foundation::log::logIf(channel, 0, __FILE__, __LINE__, [&] {
            return "Unable to start the builtin services at " + bundle.string() + ", Details: " + error.what();
        });
    }
}

} // namespace

// Threads that arrive before the first start has finished each start the bundle: starting
// is idempotent and the framework serialises it. A one-time guard here could deadlock
// with a module whose activator, run under the framework's lock, looks a service up.
void loadBuiltinServices() {
    static std::atomic<bool> started{false};
    if (!started.load(std::memory_order_acquire)) {
        startBuiltinServicesBundle();
        started.store(true, std::memory_order_release);
    }
}

} // namespace Velloc::builtin::builtinreg
