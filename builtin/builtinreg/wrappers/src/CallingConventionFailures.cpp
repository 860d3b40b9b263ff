// The fatal ends of calls that reach the wrappers with a convention they cannot serve.
#include <builtin/builtinreg/InlineCWrappers.hpp>

#include <builtin/BuiltinVariant.hpp>

#include <foundation/core/SourceLocation.hpp>
#include <foundation/core/diag/terminate.hpp>

#include <string>

namespace Velloc::builtin::builtinreg::detail {

namespace {

constexpr const char* SOURCE = "InlineCWrappers";

[[noreturn]] void fail(const std::string& message, foundation::core::SourceLocation here) {
    foundation::core::diag::terminate(message, SOURCE, static_cast<int>(here.line()), here.function_name());
}

} // namespace

void terminateUnexpectedCallingConvention(lxe::JIT_CALLING_CONVENTION convention) {
    if (convention == lxe::CanThrowLxeInternal) {
        fail("CanThrowLxeInternal should not be encountered by builtin2 code", foundation::core::SourceLocation::current());
    }
    fail("unexpected JIT_CALLING_CONVENTION encountered by builtin2 code: " +
             std::to_string(static_cast<std::int32_t>(convention)),
         foundation::core::SourceLocation::current());
}

void assertInvalidCallingConvention(const std::string& name, const BuiltinVariant& variant) {
    fail(name + " variant was created without an valid jit calling convention: " +
             std::to_string(static_cast<std::int32_t>(variant.functionDescriptor.getCallingConvention())),
         foundation::core::SourceLocation::current());
}

} // namespace Velloc::builtin::builtinreg::detail
