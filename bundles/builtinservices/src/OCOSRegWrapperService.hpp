// The class-object service over the host's class registry and package functions.
#pragma once

#include <builtin/services/IOCOSRegWrapper.hpp>

namespace builtinservices {

class OCOSRegWrapperService final : public Velloc::builtin::IOCOSRegWrapper {
public:
    bool registerPackageFunction(const std::vector<std::string>& packageParts, const std::string& functionName,
                                 Ofh_ORVEX_fn* function) override;
    oxClassID getClassIdByName(const std::string& name) const override;
    oxArray* lxeObjectToOxArray(Velloc::lxe::LxeObject* object, const oxArray* like) const override;
    Velloc::lxe::LxeObject* oxArrayToLxeObject(const oxArray* array) const override;
};

} // namespace builtinservices
