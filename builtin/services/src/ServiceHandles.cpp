#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>

#include <memory>

namespace Velloc::builtin::builtinreg {

namespace {

// The handle of a service: looked up once, by the first caller, under the one-time
// initialisation of a function-local static, and kept until the process exits.
//
// The builtin-services bundle is started before, and outside, that initialisation:
// starting it waits for the bundle's life cycle, which another thread may hold while a
// listener or an activator it runs waits for this very handle. Inside the initialisation
// only the lookup runs, which waits for no life cycle, so a thread waiting for the handle
// is never waiting for itself.
template <class Service>
const std::shared_ptr<Service>& handleOf() {
    loadBuiltinServices();
    static const std::shared_ptr<Service> service = findService<Service>();
    return service;
}

} // namespace

const std::shared_ptr<StringSupport>& getStringSupport() { return handleOf<StringSupport>(); }

const std::shared_ptr<IOCOSRegWrapper>& getOCOSRegWrapper() { return handleOf<IOCOSRegWrapper>(); }

const std::shared_ptr<ILxeObjectRegister>& getLxeObjectRegister() { return handleOf<ILxeObjectRegister>(); }

} // namespace Velloc::builtin::builtinreg
