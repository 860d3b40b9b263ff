// The host's services as the framework uses them: each is looked up on first use and the
// handle kept until the process exits. A null handle means the service is missing.
#pragma once

#include <builtin/services/ILxeObjectRegister.hpp>
#include <builtin/services/IOCOSRegWrapper.hpp>
#include <builtin/services/StringSupport.hpp>

#include <memory>

namespace Velloc::builtin::builtinreg {

const std::shared_ptr<StringSupport>& getStringSupport();
const std::shared_ptr<IOCOSRegWrapper>& getOCOSRegWrapper();
const std::shared_ptr<ILxeObjectRegister>& getLxeObjectRegister();

} // namespace Velloc::builtin::builtinreg
