// The host's services as the framework uses them. Each handle is looked up once per
// process, on first use, under a one-time initialisation, into a function-local static
// kept until the process exits: the service found then serves the whole process, whatever
// the module framework publishes or withdraws later, and a service missing at first use
// stays missing (a null handle, which every caller copes with).
//
// Holding a withdrawn service is safe: the handle keeps the service object alive, and the
// module framework never unloads a bundle's library, so the object's code stays mapped
// after its bundle stops, starts again, or publishes another instance.
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
