#include <builtin/services/ModuleHelpers.hpp>
#include <builtin/services/findService.hpp>

#include <foundation/log/Channel.hpp>

#include <exception>
#include <string>

namespace Velloc::builtin::builtinreg {

namespace {

bool startBuiltinServicesBundle() {
    const std::filesystem::path bundle = getBuiltinLibraryPath(u"bin/lnxv64/builtinservices");
    try {
        foundation::cppmicroservices::installAndStart(bundle, "(started-in=builtin2/builtin)");
        return true;
    } catch (const std::exception& error) {
        static const foundation::log::Channel& channel = foundation::log::channel("builtinservice::startBundle");
        foundation::log::logIf(channel, 0, __FILE__, __LINE__, [&] {
            return "Unable to start the builtin services at " + bundle.string() + ", Details: " + error.what();
        });
        return false;
    }
}

} // namespace

void loadBuiltinServices() {
    [[maybe_unused]] static const bool started = startBuiltinServicesBundle();
}

} // namespace Velloc::builtin::builtinreg
