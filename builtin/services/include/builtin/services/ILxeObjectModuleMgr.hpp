// The service a module that provides execution-engine objects publishes, so that modules
// built on top of it can reach it by its C++ type name.
#pragma once

#include <builtin/services/IBuiltinModule.hpp>

namespace Velloc::builtin::builtinreg {

// The service property naming the mangled C++ type of the module manager.
inline constexpr const char* CPP_MANGLED_TYPE_NAME = "cppMangledTypeName";

class ILxeObjectModuleMgr : public IBuiltinModule {
public:
    ~ILxeObjectModuleMgr() override;
};

} // namespace Velloc::builtin::builtinreg
