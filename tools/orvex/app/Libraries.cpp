#include "Libraries.hpp"

#include <builtin/builtinreg/Explain.hpp>
#include <builtin/services/IBuiltinLibrary.hpp>
#include <builtin/services/findService.hpp>

#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/filesystem/paths.hpp>

#include <algorithm>
#include <stdexcept>

namespace orvex {

std::filesystem::path defaultBundleDirectory() {
    return foundation::filesystem::getInstallRoot() / "modules";
}

std::vector<LoadedBuiltin> loadBuiltins(const std::filesystem::path& directory) {
    // The host's own services first: defining libraries rely on them.
    Velloc::builtin::builtinreg::loadBuiltinServices();
    foundation::cppmicroservices::installAndStart(directory, "");
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) {
        throw std::runtime_error("the module framework did not start");
    }
    auto context = framework->GetBundleContext();
    std::vector<LoadedBuiltin> builtins;
    for (const auto& reference : context.GetServiceReferences<Velloc::builtin::IBuiltinLibrary>()) {
        const auto library = context.GetServiceObjects(reference).GetService();
        for (const Velloc::builtin::BuiltinFcn* builtin : library->getBuiltins()) {
            builtins.push_back({library->getLibraryName(), builtin});
        }
    }
    std::sort(builtins.begin(), builtins.end(),
              [](const LoadedBuiltin& a, const LoadedBuiltin& b) { return a.builtin->name < b.builtin->name; });
    return builtins;
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
