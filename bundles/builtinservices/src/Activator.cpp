// Publishes the host's services when the builtin-services bundle starts; they are
// withdrawn when it stops.
#include "LxeObjectRegisterService.hpp"
#include "OCOSRegWrapperService.hpp"
#include "StringSupportService.hpp"

#include <builtin/services/ILxeObjectModuleMgr.hpp>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>
#include <string>
#include <typeinfo>

namespace builtinservices {

// This bundle's module manager: modules built on the host's services name it as their
// upstream module by its mangled type name.
class BuiltinServicesModuleMgr final : public Velloc::builtin::builtinreg::ILxeObjectModuleMgr {};

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        using namespace Velloc::builtin;
        context.RegisterService<StringSupport>(std::make_shared<StringSupportService>());
        context.RegisterService<IOCOSRegWrapper>(std::make_shared<OCOSRegWrapperService>());
        context.RegisterService<ILxeObjectRegister>(std::make_shared<LxeObjectRegisterService>());
        context.RegisterService<builtinreg::ILxeObjectModuleMgr>(
            std::make_shared<BuiltinServicesModuleMgr>(),
            {{builtinreg::CPP_MANGLED_TYPE_NAME, std::string(typeid(BuiltinServicesModuleMgr).name())}});
    }

    void Stop(cppmicroservices::BundleContext) override {}
};

} // namespace builtinservices

BUILTIN2_EXPORT_BUNDLE_ACTIVATOR(builtinservices::Activator, builtinservices)
