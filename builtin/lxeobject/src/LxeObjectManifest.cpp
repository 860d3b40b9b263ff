#include <builtin/lxeobject/LxeObjectManifest.hpp>
#include <builtin/lxeobject/LxeObjectRuntimeInfo.hpp>

namespace Velloc::builtin::lxeobject {

std::unordered_set<std::string> saveLxeObjectRuntimeInfo(const cppmicroservices::Bundle& bundle) {
    const cppmicroservices::AnyMap headers = bundle.GetHeaders();
    const auto record = headers.find("lxe_objects");
    if (record == headers.end()) {
        return {};
    }
    const auto* lxeObjects = cppmicroservices::any_cast<cppmicroservices::AnyMap>(&record->second);
    if (lxeObjects == nullptr) {
        throw types::SaveLxeObjectRuntimeInfoError("Error while trying to save the lxe_objects of bundle " +
                                                   bundle.GetSymbolicName() +
                                                   ". Details: lxe_objects must be an object keyed by mangled c++ "
                                                   "class names.");
    }
    return types::addLxeObjectRuntimeInfo(*lxeObjects);
}

} // namespace Velloc::builtin::lxeobject
