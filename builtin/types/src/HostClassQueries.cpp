#include <builtin/types/detail/HostClassQueries.hpp>

#include <builtin/services/ServiceHandles.hpp>

#include <ocos/ClassRegistry.hpp>

#include <string>

namespace Velloc::builtin::types::detail {

// Both answers come from the builtin-services bundle; without it the classes are unknown,
// which every caller treats as a missing service.
std::optional<oxClassID> queryStringClassId() {
    const auto& service = builtinreg::getStringSupport();
    if (!service) {
        return std::nullopt;
    }
    return service->getStringClassId();
}

std::optional<oxClassID> queryEngineObjectClassId() {
    const auto& service = builtinreg::getOCOSRegWrapper();
    if (!service) {
        return std::nullopt;
    }
    const oxClassID id = service->getClassIdByName(std::string(ocos::LXE_OBJECT_CLASS_NAME));
    if (id == oxUNKNOWN_CLASS) {
        return std::nullopt;
    }
    return id;
}

} // namespace Velloc::builtin::types::detail
