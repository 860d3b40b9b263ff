// What builtin modules call while they start: keeping their registration objects,
// finding installed files, reaching the modules they build on, and registering package
// functions.
#pragma once

#include <builtin/services/ILxeObjectModuleMgr.hpp>
#include <ocos/Ofh.hpp>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace Velloc::builtin::builtinreg {

// Does nothing; taking the address of a module's registration object and passing it here
// keeps the linker from dropping that object.
void forcelink(const volatile void* symbol);

// The installation root in native form, with relative appended when it is not empty. A
// null relative throws std::logic_error.
std::filesystem::path getBuiltinLibraryPath(const char16_t* relative);

// For each type name in order, visits the module manager published with that
// cppMangledTypeName; names no module publishes, the empty name among them, are skipped.
// Only two things throw: an empty visit, std::bad_function_call when a module is found,
// and a framework context no longer valid, std::runtime_error.
void callUpstreamModules(std::initializer_list<std::string> typeNames,
                         const std::function<void(ILxeObjectModuleMgr*)>& visit);

// Registers the package function through the class-object service and returns its
// answer. Without the service, logs on the channel "builtinservice::registerpkgfcn" and
// returns false.
bool registerPackageFunctionHelper(const std::vector<std::string>& packageParts, const std::string& functionName,
                                   Ofh_ORVEX_fn* function);

} // namespace Velloc::builtin::builtinreg
