#include <builtin/builtinreg/ParallelEnvironment.hpp>

#include <utility>

namespace Velloc::builtin::builtinreg::detail {

ParallelEnvironment::ParallelEnvironment(lxe::ILxeBuiltinEnvironment* parent, bool* raised)
    : parent_(parent), raised_(raised) {}

ParallelEnvironment::~ParallelEnvironment() {
    std::vector<std::u16string> warnings;
    std::exception_ptr exception;
    {
        std::lock_guard lock(mutex_);
        warnings = std::move(warnings_);
        exception = std::move(exception_);
    }
    if (raised_ != nullptr) {
        *raised_ = !warnings.empty() || exception != nullptr;
    }
    for (const std::u16string& warning : warnings) {
        parent_->AddWarningMessage(warning);
    }
    if (exception == nullptr) {
        return;
    }
    // The parent captures the error from inside a handler, as it would its own.
    try {
        std::rethrow_exception(exception);
    } catch (...) {
        if (lxe::ILxeBuiltinAccessors* accessors = parent_->GetLxeBuiltinAccessors()) {
            accessors->SetInternalPendingException();
        }
    }
}

void ParallelEnvironment::AddWarningMessage(const std::u16string& message) {
    std::lock_guard lock(mutex_);
    warnings_.push_back(message);
}

void ParallelEnvironment::SetInternalPendingException() {
    std::exception_ptr current = std::current_exception();
    std::lock_guard lock(mutex_);
    if (exception_ == nullptr) {
        exception_ = std::move(current);
    }
}

lxe::ILxeBuiltinAccessors* ParallelEnvironment::GetLxeBuiltinAccessors() { return this; }

bool ParallelEnvironment::containsException() const {
    std::lock_guard lock(mutex_);
    return exception_ != nullptr;
}

} // namespace Velloc::builtin::builtinreg::detail
