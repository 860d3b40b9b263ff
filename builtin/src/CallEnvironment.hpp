// The environment invoke hands a variant: it collects the warnings the variant raises
// and the error it records, for invoke to report once the variant has returned.
#pragma once

#include <lxe/ILxeBuiltinEnvironment.hpp>

#include <exception>
#include <string>
#include <vector>

namespace Velloc::builtin::detail {

class CallEnvironment final : public lxe::ILxeBuiltinEnvironment, public lxe::ILxeBuiltinAccessors {
public:
    CallEnvironment(std::vector<std::u16string>& warnings, std::exception_ptr& pendingError)
        : warnings_(warnings), pendingError_(pendingError) {}

    void AddWarningMessage(const std::u16string& message) override { warnings_.push_back(message); }
    lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return this; }
    void SetInternalPendingException() override { pendingError_ = std::current_exception(); }

private:
    std::vector<std::u16string>& warnings_;
    std::exception_ptr& pendingError_;
};

} // namespace Velloc::builtin::detail
