// The base interface of a builtin module; modules declare their own operations.
#pragma once

namespace Velloc::builtin {

class IBuiltinModule {
public:
    virtual ~IBuiltinModule();
};

} // namespace Velloc::builtin
