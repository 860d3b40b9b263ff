// The unary element-wise transform of the engine's entry: out[i] = f(in[i]) for a
// developer function reached through its descriptor. Small outputs run on the calling
// thread; larger ones in one oneTBB parallel_for with grain 1, so that auto_partitioner
// alone sizes the chunks.
#pragma once

#include <builtin/builtinreg/ElementWiseArgInfo.hpp>
#include <builtin/builtinreg/MflFunctor.hpp>
#include <builtin/builtinreg/MflUnaryLoop.hpp>

#include <lxe/ILxeBuiltinEnvironment.hpp>
#include <lxe/LxeFunctionDescriptor.hpp>

#include <cstddef>
#include <span>

namespace Velloc::builtin::builtinreg::detail {

// Up to this many bytes of input (1024 elements) the transform stays on the calling thread.
template <class T>
inline constexpr std::size_t SERIAL_TRANSFORM_BYTES = 1024 * sizeof(T);

namespace mfl_kernel {

template <class R, class A>
struct UnaryPlain {
    R (*function)(A);
    R operator()(A a) const { return function(a); }
    void finish() const noexcept {}
};

template <class R, class A>
struct UnaryWithCallee {
    R (*function)(A, const lxe::LxeFunctionDescriptor*);
    const lxe::LxeFunctionDescriptor* descriptor;
    R operator()(A a) const { return function(a, descriptor); }
    void finish() const noexcept {}
};

template <class R, class A>
struct UnaryCanThrow {
    bool (*function)(A, R*, lxe::ILxeBuiltinEnvironment*, const lxe::LxeFunctionDescriptor*);
    lxe::ILxeBuiltinEnvironment* environment;
    const lxe::LxeFunctionDescriptor* descriptor;
    bool* raised;
    bool chunkRaised = false;
    R operator()(A a) {
        R result{};
        chunkRaised |= function(a, &result, environment, descriptor);
        return result;
    }
    void finish() const noexcept {
        if (chunkRaised) {
            markRaised(raised);
        }
    }
};

template <class R, class A>
struct UnaryZero {
    R operator()(A) const { return R{}; }
    void finish() const noexcept {}
};

} // namespace mfl_kernel

// The unary counterpart of MflFunctor: the kernel is chosen once per loop from the
// descriptor's calling convention.
template <class R, class A>
struct MflUnaryFunctor {
    lxe::ILxeBuiltinEnvironment* environment;
    const lxe::LxeFunctionDescriptor* descriptor;
    bool* raised;

    template <class Body>
    void withKernel(Body&& body) const {
        void* const callee = descriptor->getCallee();
        if (callee == nullptr) {
            body(mfl_kernel::UnaryZero<R, A>{});
            return;
        }
        switch (descriptor->getCallingConvention()) {
        case lxe::Plain:
            body(mfl_kernel::UnaryPlain<R, A>{reinterpret_cast<R (*)(A)>(callee)});
            return;
        case lxe::WithCallee:
            body(mfl_kernel::UnaryWithCallee<R, A>{
                reinterpret_cast<R (*)(A, const lxe::LxeFunctionDescriptor*)>(callee), descriptor});
            return;
        case lxe::CanThrow:
            body(mfl_kernel::UnaryCanThrow<R, A>{
                reinterpret_cast<bool (*)(A, R*, lxe::ILxeBuiltinEnvironment*, const lxe::LxeFunctionDescriptor*)>(
                    callee),
                environment, descriptor, raised});
            return;
        default:
            body(mfl_kernel::UnaryZero<R, A>{});
        }
    }
};

// out has one element per element of in. environment is the one element functions see:
// on worker threads it must be a ParallelEnvironment. With parallel false the transform
// always stays on the calling thread. Returns true when an element call reported a
// warning or an error.
template <class In, class Out>
bool elementWiseTransform(std::span<Out> out, const lxe::LxeFunctionDescriptor* descriptor,
                          lxe::ILxeBuiltinEnvironment* environment, bool parallel, const ElementWiseArgInfo<In>& in) {
    bool raised = false;
    const MflUnaryFunctor<Out, In> f{environment, descriptor, &raised};
    const bool serial = !parallel || out.size() * sizeof(In) <= SERIAL_TRANSFORM_BYTES<In>;
    mfl_unary::unaryOpLoop(in.data(), out.data(), out.size(), serial, 1, f);
    return raised;
}

} // namespace Velloc::builtin::builtinreg::detail
