#include <builtin/services/ModuleHelpers.hpp>
#include <builtin/services/findService.hpp>

#include <foundation/filesystem/paths.hpp>

#include <cppmicroservices/LDAPProp.h>

#include <stdexcept>

namespace Velloc::builtin::builtinreg {

void forcelink(const volatile void*) {}

std::filesystem::path getBuiltinLibraryPath(const char16_t* relative) {
    if (relative == nullptr) {
        throw std::logic_error("basic_string: construction from null is not valid");
    }
    return foundation::filesystem::concatenate(foundation::filesystem::getInstallRoot(),
                                               foundation::filesystem::toNativePath(relative));
}

void callUpstreamModules(std::initializer_list<std::string> typeNames,
                         const std::function<void(ILxeObjectModuleMgr*)>& visit) {
    for (const std::string& typeName : typeNames) {
        const cppmicroservices::LDAPFilter filter(cppmicroservices::LDAPProp(CPP_MANGLED_TYPE_NAME) == typeName);
        if (const auto module = findService<ILxeObjectModuleMgr>(filter)) {
            visit(module.get());
        }
    }
}

} // namespace Velloc::builtin::builtinreg
