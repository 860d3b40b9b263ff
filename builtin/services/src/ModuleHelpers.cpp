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

namespace {

// cppMangledTypeName = typeName. LDAPProp makes a comparison with an empty value a null
// expression (no filter at all), so the empty name's equality is spelled out: it matches
// only a module published with an empty name, and none is, so the name is skipped.
cppmicroservices::LDAPFilter moduleFilter(const std::string& typeName) {
    const cppmicroservices::LDAPPropExpr equal = cppmicroservices::LDAPProp(CPP_MANGLED_TYPE_NAME) == typeName;
    return cppmicroservices::LDAPFilter(equal.IsNull() ? "(" + std::string(CPP_MANGLED_TYPE_NAME) + "=)"
                                                       : std::string(equal));
}

} // namespace

void callUpstreamModules(std::initializer_list<std::string> typeNames,
                         const std::function<void(ILxeObjectModuleMgr*)>& visit) {
    for (const std::string& typeName : typeNames) {
        if (const auto module = findService<ILxeObjectModuleMgr>(moduleFilter(typeName))) {
            visit(module.get());
        }
    }
}

} // namespace Velloc::builtin::builtinreg
