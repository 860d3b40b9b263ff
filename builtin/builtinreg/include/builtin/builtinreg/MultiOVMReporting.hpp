// Records calls of builtins that are not safe for several language instances in one
// process. The caller decides what counts as a violation; these only write the record,
// one per call, on the channel "builtinservice::MultiOVMReporting".
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <string>

namespace Velloc::builtin::builtinreg::detail {

// Does nothing for a null variant.
void logMultiOvmViolation(const BuiltinVariant* variant);
void logMultiOvmReportingViolation(const std::string& builtinName, const std::string& className);

} // namespace Velloc::builtin::builtinreg::detail
