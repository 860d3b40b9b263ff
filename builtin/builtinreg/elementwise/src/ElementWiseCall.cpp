#include <builtin/builtinreg/ElementWiseCall.hpp>

namespace Velloc::builtin::builtinreg::detail {

void ContextEnvironment::AddWarningMessage(const std::u16string& message) { context_.warning(message); }

lxe::ILxeBuiltinAccessors* ContextEnvironment::GetLxeBuiltinAccessors() { return this; }

void ContextEnvironment::SetInternalPendingException() { pending_ = std::current_exception(); }

void ContextEnvironment::rethrowPending() const {
    if (pending_) {
        std::rethrow_exception(pending_);
    }
}

} // namespace Velloc::builtin::builtinreg::detail
