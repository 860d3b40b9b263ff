// How native code calls back into the language: a builtin that asks the language to run
// a function goes through callLanguageFunction. The program that runs the language
// installs the caller that resolves and runs functions by name; a library that must see
// every call into the language (to check promises made about it) installs an entry
// check, which runs before each call.
#pragma once

#include <string_view>

struct oxArray;

namespace Velloc::lxe {

// Runs the language function name with the host's calling form. Its errors propagate.
using LanguageFunctionCaller = void (*)(std::string_view name, int nlhs, oxArray** plhs, int nrhs,
                                        oxArray** prhs);
using LanguageEntryCheck = void (*)();

// Each returns the one installed before; null uninstalls.
LanguageFunctionCaller setLanguageFunctionCaller(LanguageFunctionCaller caller) noexcept;
LanguageEntryCheck setLanguageEntryCheck(LanguageEntryCheck check) noexcept;

// Runs the entry check, then the caller. Without a caller it throws std::logic_error
// naming the function: there is no language to call.
void callLanguageFunction(std::string_view name, int nlhs, oxArray** plhs, int nrhs, oxArray** prhs);

} // namespace Velloc::lxe
