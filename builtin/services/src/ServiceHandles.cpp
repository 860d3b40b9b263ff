#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>

namespace Velloc::builtin::builtinreg {

const std::shared_ptr<StringSupport>& getStringSupport() {
    static const std::shared_ptr<StringSupport> service = findService<StringSupport>();
    return service;
}

const std::shared_ptr<IOCOSRegWrapper>& getOCOSRegWrapper() {
    static const std::shared_ptr<IOCOSRegWrapper> service = findService<IOCOSRegWrapper>();
    return service;
}

const std::shared_ptr<ILxeObjectRegister>& getLxeObjectRegister() {
    static const std::shared_ptr<ILxeObjectRegister> service = findService<ILxeObjectRegister>();
    return service;
}

} // namespace Velloc::builtin::builtinreg
