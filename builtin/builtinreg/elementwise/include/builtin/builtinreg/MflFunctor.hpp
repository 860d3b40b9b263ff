// Calls a developer's scalar function on one pair of elements, in the calling convention
// its engine descriptor names. The broadcasting loops ask for a kernel once per loop
// (withKernel), so the convention is decided before the loop and the innermost loop is a
// plain loop over one direct kind of call.
#pragma once

#include <lxe/ILxeBuiltinEnvironment.hpp>
#include <lxe/LxeFunctionDescriptor.hpp>

#include <atomic>
#include <cstddef>

namespace Velloc::builtin::builtinreg::detail {

namespace mfl_kernel {

// Sets the shared raised flag; it only ever goes from false to true.
inline void markRaised(bool* raised) noexcept {
    if (raised != nullptr) {
        std::atomic_ref<bool>(*raised).exchange(true);
    }
}

// A kernel is copied into each chunk of a loop, called per element, and finished once at
// the end of the chunk.
template <class R, class A, class B>
struct Plain {
    R (*function)(A, B);
    R operator()(A a, B b) const { return function(a, b); }
    void finish() const noexcept {}
};

template <class R, class A, class B>
struct WithCallee {
    R (*function)(A, B, const lxe::LxeFunctionDescriptor*);
    const lxe::LxeFunctionDescriptor* descriptor;
    R operator()(A a, B b) const { return function(a, b, descriptor); }
    void finish() const noexcept {}
};

// Element calls report trouble through their result; the chunk collects it locally and
// publishes it once, so elements do not contend on the shared flag.
template <class R, class A, class B>
struct CanThrow {
    bool (*function)(A, B, R*, lxe::ILxeBuiltinEnvironment*, const lxe::LxeFunctionDescriptor*);
    lxe::ILxeBuiltinEnvironment* environment;
    const lxe::LxeFunctionDescriptor* descriptor;
    bool* raised;
    bool chunkRaised = false;
    R operator()(A a, B b) {
        R result{};
        chunkRaised |= function(a, b, &result, environment, descriptor);
        return result;
    }
    void finish() const noexcept {
        if (chunkRaised) {
            markRaised(raised);
        }
    }
};

// A convention element-wise execution does not call: every element stays zero.
template <class R, class A, class B>
struct Zero {
    R operator()(A, B) const { return R{}; }
    void finish() const noexcept {}
};

} // namespace mfl_kernel

template <class R, class A, class B>
struct MflFunctor {
    // The loops run serially while the output has no more elements than this.
    std::size_t threshold;
    // Handed to functions that can throw; on worker threads a ParallelEnvironment.
    lxe::ILxeBuiltinEnvironment* environment;
    const lxe::LxeFunctionDescriptor* descriptor;
    // Set to true when any element call reports a warning or an error.
    bool* raised;

    // Calls body with the kernel for the descriptor's convention.
    template <class Body>
    void withKernel(Body&& body) const {
        void* const callee = descriptor->getCallee();
        if (callee == nullptr) {
            body(mfl_kernel::Zero<R, A, B>{});
            return;
        }
        switch (descriptor->getCallingConvention()) {
        case lxe::Plain:
            body(mfl_kernel::Plain<R, A, B>{reinterpret_cast<R (*)(A, B)>(callee)});
            return;
        case lxe::WithCallee:
            body(mfl_kernel::WithCallee<R, A, B>{
                reinterpret_cast<R (*)(A, B, const lxe::LxeFunctionDescriptor*)>(callee), descriptor});
            return;
        case lxe::CanThrow:
            body(mfl_kernel::CanThrow<R, A, B>{
                reinterpret_cast<bool (*)(A, B, R*, lxe::ILxeBuiltinEnvironment*, const lxe::LxeFunctionDescriptor*)>(
                    callee),
                environment, descriptor, raised});
            return;
        default:
            body(mfl_kernel::Zero<R, A, B>{});
        }
    }

    // One element, for callers outside the loops. An exception escaping the element
    // function ends the process: element functions report trouble through the environment.
    R operator()(A a, B b) const noexcept {
        R result{};
        withKernel([&](auto kernel) {
            result = kernel(a, b);
            kernel.finish();
        });
        return result;
    }
};

} // namespace Velloc::builtin::builtinreg::detail
