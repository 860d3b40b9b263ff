// The defining libraries the tool loads: bundles started through the module framework,
// each publishing its builtins as an IBuiltinLibrary service.
#pragma once

#include <builtin/BuiltinFcn.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

struct LoadedBuiltin {
    std::string library;
    const Velloc::builtin::BuiltinFcn* builtin;
};

// Starts every bundle under directory and collects the builtins their libraries publish,
// sorted by name. The libraries stay loaded until the process exits.
std::vector<LoadedBuiltin> loadBuiltins(const std::filesystem::path& directory);

// The builtin of that name in a list sorted by name, as loadBuiltins returns it; null
// when there is none.
const Velloc::builtin::BuiltinFcn* findBuiltin(const std::vector<LoadedBuiltin>& builtins, std::string_view name);

// Calls the builtin as the language does, without the engine. A call that no variant
// takes and that no default implementation catches gets the report of every variant
// and why it refused, as an identified error.
void invokeBuiltin(const Velloc::builtin::BuiltinFcn& builtin, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs);

// The default directory of bundles: "modules" under the installation root.
std::filesystem::path defaultBundleDirectory();

} // namespace orvex
