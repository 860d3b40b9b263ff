// What a developer function sees of its call when it asks for it: a developer function
// whose first parameter is CallContext& may raise warnings and call language functions.
// Warnings are reported to the host in the order they were raised, after the function
// returns.
#pragma once

#include <lxe/ILxeBuiltinEnvironment.hpp>

#include <initializer_list>
#include <string>
#include <string_view>

struct oxArray;

namespace Velloc::builtin::builtinreg {

class CallContext {
public:
    explicit CallContext(lxe::ILxeBuiltinEnvironment& environment) noexcept : environment_(environment) {}

    void warning(const std::u16string& message);
    // UTF-8 text.
    void warning(std::string_view message);

    bool raisedWarnings() const noexcept { return raisedWarnings_; }

    // Runs the language function name on the arguments and returns its one result, which
    // the caller owns. Only a variant declared mayCallIntoOrvex may do this; the
    // language's errors propagate.
    oxArray* callOrvex(std::string_view name, std::initializer_list<oxArray*> arguments);

private:
    lxe::ILxeBuiltinEnvironment& environment_;
    bool raisedWarnings_ = false;
};

namespace detail {

// Warnings go nowhere and there is no pending error: for callers that have no
// environment to give.
lxe::ILxeBuiltinEnvironment& discardingEnvironment() noexcept;

} // namespace detail

} // namespace Velloc::builtin::builtinreg
