#include <builtin/lxeobject/LxeObjectBridge.hpp>

#include <builtin/services/ServiceHandles.hpp>

#include <stdexcept>
#include <utility>

namespace Velloc::builtin::builtinreg {

oxClassID getClassIdByName(const std::string& name) {
    const auto& service = getOCOSRegWrapper();
    return service ? service->getClassIdByName(name) : oxUNKNOWN_CLASS;
}

std::shared_ptr<const Velloc::lxe::LxeObjectType> getLxeObjectType(oxClassID classId, std::size_t variantId) {
    const auto& service = getOCOSRegWrapper();
    return service ? service->getLxeObjectType(classId, variantId) : nullptr;
}

} // namespace Velloc::builtin::builtinreg

namespace Velloc::builtin::lxeobject {

Velloc::lxe::LxeObject* fromOxArray(const oxArray* array) {
    const auto& service = builtinreg::getOCOSRegWrapper();
    if (!service) {
        throw std::runtime_error("Cannot get LxeObject runtime provider service");
    }
    return service->oxArrayToLxeObject(array, true);
}

oxArray* toOxArray(boost::intrusive_ptr<const Velloc::lxe::LxeObject>&& object, const char* className) {
    const auto& service = builtinreg::getOCOSRegWrapper();
    return service ? service->lxeObjectToOxArray(std::move(object), className) : nullptr;
}

ocos::COSClass* defineClass(const std::string& name) {
    const auto& service = builtinreg::getOCOSRegWrapper();
    return service ? service->defineClass(name) : nullptr;
}

} // namespace Velloc::builtin::lxeobject
