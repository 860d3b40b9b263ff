// The service interfaces' destructors live here, so that their type information and
// virtual tables have one home in the library that publishes the interfaces.
#include <builtin/services/IBuiltinLibrary.hpp>
#include <builtin/services/IBuiltinModule.hpp>
#include <builtin/services/ILxeObjectModuleMgr.hpp>
#include <builtin/services/ILxeObjectRegister.hpp>
#include <builtin/services/IOCOSRegWrapper.hpp>
#include <builtin/services/StringSupport.hpp>

namespace Velloc::builtin {

IBuiltinModule::~IBuiltinModule() = default;
IBuiltinLibrary::~IBuiltinLibrary() = default;
StringSupport::~StringSupport() = default;
IOCOSRegWrapper::~IOCOSRegWrapper() = default;
ILxeObjectRegister::~ILxeObjectRegister() = default;

void IOCOSRegWrapper::reservedSlot5() {}
void IOCOSRegWrapper::reservedSlot6() {}

oxClassID IOCOSRegWrapper::getClassID(const oxArray* array) const { return matrix::getClassID(array); }

namespace builtinreg {
ILxeObjectModuleMgr::~ILxeObjectModuleMgr() = default;
} // namespace builtinreg

} // namespace Velloc::builtin
