// The host's services as the framework uses them. Each handle follows its service from the
// first use on: a service registered later (its bundle started late or again) is found, and
// one that goes is missing from then on. A null handle means the service is missing now.
//
// The handles are borrowed: fetching one takes no lock and no reference. A handle stays
// valid until the same thread fetches that service again, or ends, even if the service goes
// meanwhile; so use it for the call at hand and fetch it anew next time.
#pragma once

#include <builtin/services/ILxeObjectRegister.hpp>
#include <builtin/services/IOCOSRegWrapper.hpp>
#include <builtin/services/StringSupport.hpp>

namespace Velloc::builtin::builtinreg {

StringSupport* getStringSupport();
IOCOSRegWrapper* getOCOSRegWrapper();
ILxeObjectRegister* getLxeObjectRegister();

} // namespace Velloc::builtin::builtinreg
