// The inline-C wrappers: one generated thunk per combination of result type and up to two
// argument types of the wrapper type list, through which compiled code calls a developer
// function directly, without boxing. A thunk reads the calling convention from the callee
// record and calls the function in the matching shape, so one table serves every
// convention:
//
//   Plain               f(a...)                                   result packed
//   WithCallee          f(a..., callee)                           result packed
//   CanThrow            bool f(a..., slot, environment, callee)   *errorFlag = the bool;
//                                                                 *slot packed (slot is a
//                                                                 zeroed R*, null for void)
//   CanThrowLxeInternal ends the process
//   anything else       not called; the zeroed record is returned
//
// A null callee record or function address counts as an unknown convention. Argument i of
// the signature is arguments[i]; an argument of the no-value type is neither read nor
// passed, so a trailing no-value argument gives the thunk of the shorter signature. An
// argument that does not hold its declared type is reported through the Parameter type
// check, and reads as zero when that check is disarmed.
#pragma once

#include <builtin/Parameter.hpp>
#include <builtin/builtinreg/InlineCResult.hpp>
#include <builtin/builtinreg/InlineCTypeList.hpp>

#include <lxe/ILxeBuiltinEnvironment.hpp>
#include <lxe/JitCallingConvention.hpp>
#include <lxe/LxeFunctionDescriptor.hpp>

#include <string>

namespace Velloc::builtin {
class BuiltinVariant;
}

namespace Velloc::builtin::builtinreg::detail {

// The thunk of a function without arguments.
using InlineCWrapperNoArgsFcn = InlineCResult (*)(const lxe::LxeFunctionDescriptor* callee,
                                                  lxe::ILxeBuiltinEnvironment* environment, bool* errorFlag);
// The thunk of a function with arguments, read from one Parameter per argument.
using InlineCWrapperFcn = InlineCResult (*)(const lxe::LxeFunctionDescriptor* callee,
                                            lxe::ILxeBuiltinEnvironment* environment, bool* errorFlag,
                                            const Parameter* arguments);

// The thunks by type index: result first, then the arguments. The type-list argument only
// selects the overload. An index above NO_VALUE_INDEX gives a null pointer.
InlineCWrapperNoArgsFcn getExportedInlineCWrapperFcn(const InlineCTypeList*, unsigned long resultIndex);
InlineCWrapperFcn getExportedInlineCWrapperFcn(const InlineCTypeList*, unsigned long resultIndex,
                                               unsigned long argumentIndex);
InlineCWrapperFcn getExportedInlineCWrapperFcn(const InlineCTypeList*, unsigned long resultIndex,
                                               unsigned long argumentIndex1, unsigned long argumentIndex2);

// Ends the process: convention CanThrowLxeInternal belongs to the engine's own functions,
// and any other value here is a defect of the caller.
[[noreturn]] void terminateUnexpectedCallingConvention(lxe::JIT_CALLING_CONVENTION convention);

// Ends the process for a variant whose descriptor carries no calling convention the
// wrappers know; name is the variant's name in the message.
[[noreturn]] void assertInvalidCallingConvention(const std::string& name, const BuiltinVariant& variant);

} // namespace Velloc::builtin::builtinreg::detail
