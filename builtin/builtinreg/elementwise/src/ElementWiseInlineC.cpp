#include <builtin/builtinreg/ElementWiseInlineC.hpp>

#include <builtin/builtinreg/ElementTypes.hpp>
#include <builtin/builtinreg/ElementWiseArgInfo.hpp>
#include <builtin/builtinreg/ElementWiseOutput.hpp>
#include <builtin/builtinreg/ElementWiseTransform.hpp>
#include <builtin/builtinreg/InlineCWrappers.hpp>
#include <builtin/builtinreg/MflBinaryDrivers.hpp>
#include <builtin/builtinreg/ParallelEnvironment.hpp>

#include <limits>
#include <span>

namespace Velloc::builtin::builtinreg::detail {

namespace {

constexpr std::size_t ELEMENT_TYPE_COUNT = ElementTypes::SIZE;
constexpr InlineCResult NOT_HANDLED{0, 0};

template <std::size_t I>
using ElementAt = typename typelist::At<I, ElementTypes>::type;

struct Call {
    const lxe::LxeFunctionDescriptor* descriptor;
    lxe::ILxeBuiltinEnvironment* environment;
    bool& raised;
    const ElementWiseArguments& arguments;
    bool parallel;
};

InlineCResult arrayResult(oxArray* array) {
    return InlineCResult{static_cast<std::int32_t>(WRAPPER_TYPE_INDEX<oxArray*>),
                         reinterpret_cast<std::uintptr_t>(array)};
}

// The first input that may become the output, else a new array.
template <class T, class... Inputs>
oxArray* outputFor(const std::vector<std::size_t>& dims, const Inputs&... inputs) {
    for (oxArray* candidate : {inputs.array...}) {
        if (canReuseAsOutput(candidate, classOfValue<T>(), isComplexValue<T>(), dims)) {
            return candidate;
        }
    }
    return createElementWiseOutput(dims, classOfValue<T>(), isComplexValue<T>()).release();
}

// Gives up the output of a failed call, unless it is an input the caller still owns.
template <class... Inputs>
void dropOutput(oxArray* out, const Inputs&... inputs) {
    if (((out != inputs.array) && ...)) {
        matrix::destroyArray(out);
    }
}

template <class T>
InlineCResult binaryWorker(const Call& call, std::size_t index) {
    const ElementWiseArgInfo<T> a = elementWiseArgInfo<T>(call.arguments[0], true);
    const ElementWiseArgInfo<T> b = elementWiseArgInfo<T>(call.arguments[1], true);
    if (!a.isArray() && !b.isArray()) {
        const InlineCWrapperFcn wrapper = getExportedInlineCWrapperFcn(nullptr, index, index, index);
        return wrapper(call.descriptor, call.environment, &call.raised, call.arguments.data());
    }
    const OperandDims operands[2] = {{a.ndims, a.dims}, {b.ndims, b.dims}};
    const std::vector<std::size_t> dims = elementWiseOutputDims(operands, operands + 2);
    oxArray* const out = outputFor<T>(dims, a, b);
    bool elementRaised = false;
    bool collected = false;
    bool failed = false;
    {
        ParallelEnvironment workers(call.environment, &collected);
        const MflFunctor<T, T, T> f{call.parallel ? ELEMENT_WISE_PARALLEL_THRESHOLD
                                                  : std::numeric_limits<std::size_t>::max(),
                                    &workers, call.descriptor, &elementRaised};
        binaryDriver<T>()(a.data(), b.data(), matrix::getTypedData<T>(out), a.count, a.ndims, a.dims, b.count,
                          b.ndims, b.dims, matrix::getNumberOfElements(out), dims.size(), dims.data(), f);
        failed = workers.containsException();
    }
    call.raised = elementRaised || collected;
    if (failed) {
        dropOutput(out, a, b);
        return NOT_HANDLED;
    }
    return arrayResult(out);
}

template <class T>
InlineCResult unaryWorker(const Call& call) {
    const ElementWiseArgInfo<T> in = elementWiseArgInfo<T>(call.arguments[0], true);
    const std::vector<std::size_t> dims(in.dims, in.dims + in.ndims);
    oxArray* const out = outputFor<T>(dims, in);
    bool elementRaised = false;
    bool collected = false;
    bool failed = false;
    {
        ParallelEnvironment workers(call.environment, &collected);
        elementRaised = elementWiseTransform<T, T>(std::span<T>(matrix::getTypedData<T>(out), in.count),
                                                 call.descriptor, &workers, call.parallel, in);
        failed = workers.containsException();
    }
    call.raised = elementRaised || collected;
    if (failed) {
        dropOutput(out, in);
        return NOT_HANDLED;
    }
    return arrayResult(out);
}

constexpr std::size_t binaryKey(std::size_t k0, std::size_t k1, std::size_t k2) { return k0 * 256 + k1 * 16 + k2; }

// One link of the binary chain owns the keys whose output index is First or First + 1:
// their homogeneous triples reach a worker, every other key of the band is refused, and
// keys above the band pass on.
template <std::size_t First>
InlineCResult binaryLink(std::size_t key, const Call& call) {
    if constexpr (First >= ELEMENT_TYPE_COUNT) {
        return NOT_HANDLED;
    } else {
        if (key == binaryKey(First, First, First)) {
            return binaryWorker<ElementAt<First>>(call, First);
        }
        if constexpr (First + 1 < ELEMENT_TYPE_COUNT) {
            if (key == binaryKey(First + 1, First + 1, First + 1)) {
                return binaryWorker<ElementAt<First + 1>>(call, First + 1);
            }
        }
        if (key < binaryKey(First + 2, 0, 0)) {
            return NOT_HANDLED;
        }
        return binaryLink<First + 2>(key, call);
    }
}

template <std::size_t... I>
InlineCResult unaryDispatch(std::size_t key, const Call& call, std::index_sequence<I...>) {
    InlineCResult result = NOT_HANDLED;
    static_cast<void>(((key == I * 16 + I ? (result = unaryWorker<ElementAt<I>>(call), true) : false) || ...));
    return result;
}

bool isIndex(std::size_t k) { return k < 16; }

} // namespace

InlineCResult elementWiseInlineC(const lxe::LxeFunctionDescriptor* descriptor,
                                 lxe::ILxeBuiltinEnvironment* environment, bool& raised,
                                 const ElementWiseArguments& arguments, const InlineCTypeList*, std::size_t k0,
                                 std::size_t k1, bool parallel) {
    if (!isIndex(k0) || !isIndex(k1)) {
        return NOT_HANDLED;
    }
    const Call call{descriptor, environment, raised, arguments, parallel};
    return unaryDispatch(k0 * 16 + k1, call, std::make_index_sequence<ELEMENT_TYPE_COUNT>{});
}

InlineCResult elementWiseInlineC(const lxe::LxeFunctionDescriptor* descriptor,
                                 lxe::ILxeBuiltinEnvironment* environment, bool& raised,
                                 const ElementWiseArguments& arguments, const InlineCTypeList*, std::size_t k0,
                                 std::size_t k1, std::size_t k2, bool parallel) {
    if (!isIndex(k0) || !isIndex(k1) || !isIndex(k2)) {
        return NOT_HANDLED;
    }
    const Call call{descriptor, environment, raised, arguments, parallel};
    return binaryLink<0>(binaryKey(k0, k1, k2), call);
}

} // namespace Velloc::builtin::builtinreg::detail
