// The service a defining library publishes so that hosts and tools find its builtins.
#pragma once

#include <builtin/BuiltinFcn.hpp>

#include <string>
#include <vector>

namespace Velloc::builtin {

class IBuiltinLibrary {
public:
    virtual ~IBuiltinLibrary();

    virtual std::string getLibraryName() const = 0;
    // The builtins live as long as the library's bundle is loaded, which is until exit.
    virtual std::vector<const BuiltinFcn*> getBuiltins() const = 0;
};

} // namespace Velloc::builtin
