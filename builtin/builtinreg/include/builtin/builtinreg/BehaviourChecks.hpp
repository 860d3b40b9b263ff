// Checks that a running variant keeps its behaviour promises, and the trace records
// written around each execution. A broken promise ends the process: the engine relies
// on these promises, so the declaration must be corrected.
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <fl/ustring.hpp>
#include <foundation/log/Channel.hpp>
#include <foundation/usm/usm.hpp>

#include <cstdint>
#include <vector>

namespace Velloc::builtin {

// Called by the host each time native code calls into the language: ends the process
// when the innermost running variant of this language instance promised not to.
void vlDoesNotCallORVEXAssertion();

namespace builtinreg {

namespace detail {

// The variants running in one language instance, innermost last. Unlocked: the host runs
// a language instance on one thread at a time, and so does whatever calls builtins in it.
// A push is a compare and a store: growing, which only nesting deeper than before needs,
// is out of line, so that an armed call keeps its frame small.
class ActiveVariants {
public:
    ActiveVariants() : storage_(16), top_(storage_.data()), limit_(storage_.data() + storage_.size()) {}
    ActiveVariants(const ActiveVariants&) = delete;
    ActiveVariants& operator=(const ActiveVariants&) = delete;

    void push(const BuiltinVariant* variant) {
        if (top_ == limit_) [[unlikely]] {
            grow();
        }
        *top_++ = variant;
    }
    void pop() noexcept { --top_; }
    // The innermost running variant; null when none runs.
    const BuiltinVariant* innermost() const noexcept { return top_ == storage_.data() ? nullptr : top_[-1]; }

private:
    [[gnu::noinline]] void grow();

    std::vector<const BuiltinVariant*> storage_;
    const BuiltinVariant** top_;
    const BuiltinVariant** limit_;
};

// The active-variant stack of the instance current on this thread, as this thread last
// found it: an instance keeps its stack until it is destroyed, and its serial number is
// never reused (serials start at 1), so an armed call looks the stack up once per thread
// and instance, and otherwise reads it here with a few loads.
struct FoundStack {
    std::uint64_t serial = 0;
    ActiveVariants* active = nullptr;
};
[[gnu::tls_model("initial-exec")]] extern constinit thread_local FoundStack foundStack;

// The stack of the instance, made if it has none yet, noted for this thread; with no
// instance, this thread's stack of the variants running outside any, which nothing judges.
ActiveVariants& noteActiveVariants(foundation::usm::OvmInstance* instance);

// The stack of the instance current on this thread. Always a stack, so that a guard
// pushes and pops without a test.
inline ActiveVariants& currentActiveVariants() {
    foundation::usm::OvmInstance* instance = foundation::usm::OvmInstance::current();
    if (instance != nullptr && foundStack.serial == instance->serial()) [[likely]] {
        return *foundStack.active;
    }
    return noteActiveVariants(instance);
}

} // namespace detail

// Marks a variant as running in the current language instance for the guard's
// lifetime. Guards nest; without a current instance nothing is checked. Inline: an armed
// call pays a push and a pop on a stack it already knows.
class CallsORVEXCheckAsserted {
public:
    explicit CallsORVEXCheckAsserted(const BuiltinVariant* variant) : active_(detail::currentActiveVariants()) {
        active_.push(variant);
    }
    ~CallsORVEXCheckAsserted() { active_.pop(); }
    CallsORVEXCheckAsserted(const CallsORVEXCheckAsserted&) = delete;
    CallsORVEXCheckAsserted& operator=(const CallsORVEXCheckAsserted&) = delete;

private:
    detail::ActiveVariants& active_; // the stack pushed on, popped from the same
};

namespace detail {

// The warning-capture callback for a variant that promised no warnings.
class AssertIfWarnings {
public:
    explicit AssertIfWarnings(const BuiltinVariant& variant) noexcept : variant_(variant) {}
    [[noreturn]] bool operator()(const fl::ustring& warning) const;
    // The same, as the handler of a capture that keeps only the variant.
    [[noreturn]] static bool onWarning(const BuiltinVariant& variant, const fl::ustring& warning) {
        AssertIfWarnings{variant}(warning);
    }

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
