#include "OCOSRegWrapperService.hpp"

#include <ocos/ClassRegistry.hpp>
#include <ocos/PackageFunctions.hpp>

namespace builtinservices {

bool OCOSRegWrapperService::registerPackageFunction(const std::vector<std::string>& packageParts,
                                                    const std::string& functionName, Ofh_ORVEX_fn* function) {
    return ocos::registerPackageFunction(packageParts, functionName, function);
}

oxClassID OCOSRegWrapperService::getClassIdByName(const std::string& name) const {
    const ocos::COSClass* found = ocos::findClass(name);
    return found != nullptr ? found->getId() : oxUNKNOWN_CLASS;
}

// The host holds no engine objects yet: nothing converts either way.
oxArray* OCOSRegWrapperService::lxeObjectToOxArray(Velloc::lxe::LxeObject*, const oxArray*) const { return nullptr; }

Velloc::lxe::LxeObject* OCOSRegWrapperService::oxArrayToLxeObject(const oxArray*) const { return nullptr; }

} // namespace builtinservices
