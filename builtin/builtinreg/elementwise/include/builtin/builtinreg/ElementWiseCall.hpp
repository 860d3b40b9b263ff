// Runs a developer function element-wise for invoke's generic entry: the function is a
// template argument of the kernel, so the compiler sees it inside the broadcasting loops
// and can vectorise them. Outputs of more than INVOKE_PARALLEL_THRESHOLD elements run on
// oneTBB's workers; warnings raised there through a CallContext, and the first
// exception, are collected by a ParallelEnvironment and replayed on the calling thread.
#pragma once

#include <builtin/Parameter.hpp>
#include <builtin/builtinreg/CallContext.hpp>
#include <builtin/builtinreg/ElementWiseArgInfo.hpp>
#include <builtin/builtinreg/ElementWiseInlineC.hpp>
#include <builtin/builtinreg/ElementWiseOutput.hpp>
#include <builtin/builtinreg/MflBinaryLoops.hpp>
#include <builtin/builtinreg/MflUnaryLoop.hpp>
#include <builtin/builtinreg/ParallelEnvironment.hpp>
#include <builtin/builtinreg/ParameterAccess.hpp>

#include <lxe/ILxeBuiltinEnvironment.hpp>

#include <array>
#include <cstddef>
#include <exception>
#include <tuple>
#include <type_traits>
#include <vector>

namespace Velloc::builtin::builtinreg::detail {

// The smallest output for which two cores beat one on a vectorised loop in cache
// (BM_InCachePlusParallel against BM_InCachePlusSerial): below it, waking a worker costs
// more than the half of the loop it would take.
inline constexpr std::size_t INVOKE_PARALLEL_THRESHOLD = std::size_t{1} << 15;

// The parent of the workers' ParallelEnvironment: replayed warnings go to the call's
// CallContext, so that the call reports them; a replayed exception is kept for
// rethrowPending, on the calling thread.
class ContextEnvironment final : public lxe::ILxeBuiltinEnvironment, public lxe::ILxeBuiltinAccessors {
public:
    explicit ContextEnvironment(CallContext& context) noexcept : context_(context) {}

    void AddWarningMessage(const std::u16string& message) override;
    lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override;
    void SetInternalPendingException() override;

    void rethrowPending() const;

private:
    CallContext& context_;
    std::exception_ptr pending_;
};

// Calls element(context, values...) for each element. A chunk of a loop works on its own
// copy, with a CallContext over the workers' environment. An exception ends that chunk's
// calls (its remaining elements stay zero) and is recorded as the call's error.
template <class R, class Element, class... A>
struct DeveloperFunctor {
    std::size_t threshold;
    lxe::ILxeBuiltinEnvironment* environment;
    Element element;

    struct Kernel {
        CallContext context;
        lxe::ILxeBuiltinEnvironment* environment;
        Element element;
        bool failed = false;

        R operator()(A... values) {
            if (failed) {
                return R{};
            }
            try {
                return element(context, values...);
            } catch (...) {
                failed = true;
                environment->GetLxeBuiltinAccessors()->SetInternalPendingException();
                return R{};
            }
        }
        void finish() const noexcept {}
    };

    template <class Body>
    void withKernel(Body&& body) const {
        body(Kernel{CallContext(*environment), environment, element});
    }
};

template <class R, class... A, class Element>
Parameter runElementWise(CallContext& context, const Parameter* parameters, Element element) {
    constexpr std::size_t N = sizeof...(A);
    static_assert(N == 1 || N == 2, "element-wise functions take one or two scalars");
    const auto operands = [&]<std::size_t... I>(std::index_sequence<I...>) {
        return std::tuple<ElementWiseArgInfo<A>...>(elementWiseArgInfo<A>(parameters[I])...);
    }(std::make_index_sequence<N>{});
    const bool anyArray = std::apply([](const auto&... o) { return (o.isArray() || ...); }, operands);
    if (!anyArray) {
        return toResultParameter(std::apply([&](const auto&... o) { return element(context, o.scalar...); }, operands));
    }

    const std::array<OperandDims, N> shapes =
        std::apply([](const auto&... o) { return std::array<OperandDims, N>{OperandDims{o.ndims, o.dims}...}; },
                   operands);
    const std::vector<std::size_t> outDims = elementWiseOutputDims(shapes.data(), shapes.data() + N);

    // A temporary input of the result's type takes the result in place; the result then
    // holds a reference of its own, since the caller gives back the input's.
    matrix::ArrayPtr out;
    const auto tryReuse = [&]<class T>(const ElementWiseArgInfo<T>& operand) {
        if constexpr (std::is_same_v<T, R>) {
            if (!out && canReuseAsOutput(operand.array, classOfValue<R>(), isComplexValue<R>(), outDims)) {
                out.reset(matrix::addReference(operand.array));
            }
        }
    };
    std::apply([&](const auto&... o) { (tryReuse(o), ...); }, operands);
    if (!out) {
        out = createElementWiseOutput(outDims, classOfValue<R>(), isComplexValue<R>());
    }
    R* const result = matrix::getTypedData<R>(out.get());
    const std::size_t count = matrix::getNumberOfElements(out.get());

    ContextEnvironment parent(context);
    {
        ParallelEnvironment workers(&parent, nullptr);
        const DeveloperFunctor<R, Element, A...> f{INVOKE_PARALLEL_THRESHOLD, &workers, element};
        if constexpr (N == 1) {
            const auto& in = std::get<0>(operands);
            mfl_unary::unaryOpLoop(in.data(), result, count, count <= f.threshold, mfl_binary::MAX_GRAIN, f);
        } else {
            const auto& a = std::get<0>(operands);
            const auto& b = std::get<1>(operands);
            mfl_binary::binaryOpDispatch(a.data(), b.data(), result, a.count, a.ndims, a.dims, b.count, b.ndims,
                                         b.dims, count, outDims.size(), outDims.data(), f);
        }
    }
    parent.rethrowPending();
    return Parameter(out.release());
}

} // namespace Velloc::builtin::builtinreg::detail
