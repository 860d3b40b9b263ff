// The class-object service over the host's class registry, package functions and
// engine-object arrays.
#pragma once

#include <builtin/services/IOCOSRegWrapper.hpp>

namespace builtinservices {

class OCOSRegWrapperService final : public Velloc::builtin::IOCOSRegWrapper {
public:
    using IOCOSRegWrapper::oxArrayToLxeObject;

    bool registerPackageFunction(const std::vector<std::string>& packageParts, const std::string& functionName,
                                 Ofh_ORVEX_fn* function) override;
    oxClassID getClassIdByName(const std::string& name) const override;
    Velloc::lxe::LxeObject* oxArrayToLxeObject(const oxArray* array, bool strict) const override;
    oxArray* lxeObjectToOxArray(boost::intrusive_ptr<const Velloc::lxe::LxeObject>&& object,
                                const char* className) const override;
    oxArray* lxeObjectToOxArray(Velloc::lxe::LxeObject* object, const oxArray* like) const override;
    std::shared_ptr<const Velloc::lxe::LxeObjectType> getLxeObjectType(oxClassID classId,
                                                                       std::size_t variantId) const override;
    ocos::COSClass* defineClass(const std::string& name) override;
    void setOfhFinder(std::string className, ocos::OfhFinder finder) override;
    void addMethod(ocos::COSClass* cls, const std::string& name, const std::string& implementation,
                   const ocos::MemberAccess& access, bool isStatic, bool isHidden, bool isSealed) override;
};

} // namespace builtinservices
