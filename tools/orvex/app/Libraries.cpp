#include "Libraries.hpp"

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/services/findService.hpp>

#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/filesystem/paths.hpp>

#include <algorithm>
#include <stdexcept>

namespace orvex {

std::filesystem::path defaultBundleDirectory() {
    return foundation::filesystem::getInstallRoot() / "modules";
}

TrackedLibraries::TrackedLibraries(const std::filesystem::path& directory) {
    // The host's own services first: defining libraries rely on them.
    Velloc::builtin::builtinreg::loadBuiltinServices();
    foundation::cppmicroservices::installAndStart(directory, "");
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) {
        throw std::runtime_error("the module framework did not start");
    }
    tracker_ = std::make_unique<cppmicroservices::ServiceTracker<Velloc::builtin::IBuiltinLibrary>>(
        framework->GetBundleContext());
    tracker_->Open();
}

std::shared_ptr<const LibrarySnapshot> TrackedLibraries::snapshot() const {
    auto snapshot = std::make_shared<LibrarySnapshot>();
    snapshot->leases = tracker_->GetServices();
    for (const auto& library : snapshot->leases) {
        for (const Velloc::builtin::BuiltinFcn* builtin : library->getBuiltins()) {
            snapshot->builtins.push_back({library->getLibraryName(), builtin});
        }
    }
    std::sort(snapshot->builtins.begin(), snapshot->builtins.end(),
              [](const LoadedBuiltin& a, const LoadedBuiltin& b) { return a.builtin->name < b.builtin->name; });
    return snapshot;
}

const Velloc::builtin::BuiltinFcn* findBuiltin(const std::vector<LoadedBuiltin>& builtins, std::string_view name) {
    const auto found = std::lower_bound(builtins.begin(), builtins.end(), name,
                                        [](const LoadedBuiltin& b, std::string_view n) { return b.builtin->name < n; });
    return found != builtins.end() && found->builtin->name == name ? found->builtin : nullptr;
}

void invokeBuiltin(const Velloc::builtin::BuiltinFcn& builtin, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs) {
    namespace builtinreg = Velloc::builtin::builtinreg;
    // Without a default implementation invoke has nothing to tell the user but that it
    // has no implementation to run.
    if (builtin.defaultVariant.functionDescriptor.getHostStyleEntry() == nullptr &&
        builtinreg::explain(builtin, nlhs, nrhs, prhs).chosen == nullptr) {
        builtinreg::throwNoMatchingVariant(builtin, nlhs, nrhs, prhs);
    }
    builtin.invoke(nlhs, plhs, nrhs, prhs, Velloc::builtin::BuiltinFcn::NoLxe);
}

} // namespace orvex
