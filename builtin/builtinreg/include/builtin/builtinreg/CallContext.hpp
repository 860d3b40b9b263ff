// What a developer function sees of its call when it asks for it: a developer function
// whose first parameter is CallContext& may raise warnings. Warnings are reported to the
// host in the order they were raised, after the function returns.
#pragma once

#include <lxe/ILxeBuiltinEnvironment.hpp>

#include <string>
#include <string_view>

namespace Velloc::builtin::builtinreg {

class CallContext {
public:
    explicit CallContext(lxe::ILxeBuiltinEnvironment& environment) noexcept : environment_(environment) {}

    void warning(const std::u16string& message);
    // UTF-8 text.
    void warning(std::string_view message);

    bool raisedWarnings() const noexcept { return raisedWarnings_; }

private:
    lxe::ILxeBuiltinEnvironment& environment_;
    bool raisedWarnings_ = false;
};

} // namespace Velloc::builtin::builtinreg
