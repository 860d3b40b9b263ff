// Checks that a running variant keeps its behaviour promises, and the trace records
// written around each execution. A broken promise ends the process: the engine relies
// on these promises, so the declaration must be corrected.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <fl/ustring.hpp>
#include <foundation/log/Channel.hpp>

namespace Velloc::builtin {

// Called by the host each time native code calls into the language: ends the process
// when the innermost running variant of this language instance promised not to.
void vlDoesNotCallORVEXAssertion();

namespace builtinreg {

// Marks a variant as running in the current language instance for the guard's
// lifetime. Guards nest; without a current instance nothing is checked.
class CallsORVEXCheckAsserted {
public:
    explicit CallsORVEXCheckAsserted(const BuiltinVariant* variant);
    ~CallsORVEXCheckAsserted();
    CallsORVEXCheckAsserted(const CallsORVEXCheckAsserted&) = delete;
    CallsORVEXCheckAsserted& operator=(const CallsORVEXCheckAsserted&) = delete;

private:
    bool pushed_;
};

namespace detail {

// The warning-capture callback for a variant that promised no warnings.
class AssertIfWarnings {
public:
    explicit AssertIfWarnings(const BuiltinVariant& variant) noexcept : variant_(variant) {}
    [[noreturn]] bool operator()(const fl::ustring& warning) const;

private:
    const BuiltinVariant& variant_;
};

// The channel of the records below, for callers that test it before making one.
const foundation::log::Channel& executionChannel();

// "Executing: " and "Execution complete: " records on "builtin2::invoke".
class LogBuiltinVariantExecution_ {
public:
    explicit LogBuiltinVariantExecution_(const BuiltinVariant* variant);
    ~LogBuiltinVariantExecution_();
    LogBuiltinVariantExecution_(const LogBuiltinVariantExecution_&) = delete;
    LogBuiltinVariantExecution_& operator=(const LogBuiltinVariantExecution_&) = delete;

private:
    const BuiltinVariant* variant_;
};

} // namespace detail

} // namespace builtinreg

} // namespace Velloc::builtin
