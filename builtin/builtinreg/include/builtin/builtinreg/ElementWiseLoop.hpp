// Applies a scalar function to every element of its array arguments, broadcasting
// singleton dimensions, in column-major order on the calling thread. Scalars travel as
// their values; arrays as host arrays of the element's class.
#pragma once

#include <builtin/builtinreg/ParameterAccess.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

namespace Velloc::builtin::builtinreg::detail {

template <class T>
struct ElementWiseOperand {
    const T* data = nullptr; // null for a scalar
    T scalar{};
    matrix::Dims dims;
};

template <class T>
ElementWiseOperand<T> elementWiseOperand(const Parameter& parameter) {
    ElementWiseOperand<T> operand;
    oxArray* const* array = boost::get<oxArray*>(&parameter);
    if (array == nullptr || *array == nullptr) {
        types::Temporaries none;
        operand.scalar = fromParameter<T>(parameter, none);
        return operand;
    }
    if (matrix::getClassID(*array) != classOfValue<T>() || matrix::isComplex(*array) != isComplexValue<T>() ||
        matrix::isSparse(*array)) {
        types::detail::assertFromParameterType(typeid(T), *array);
    }
    operand.dims = matrix::getDimensions(*array);
    if (matrix::getNumberOfElements(*array) == 1) {
        operand.scalar = *matrix::getTypedData<T>(*array);
    } else {
        operand.data = matrix::getTypedData<T>(*array);
    }
    return operand;
}

// Walks the output in column-major order, keeping each operand's offset; a singleton
// dimension of an operand has stride 0, so its element repeats along it.
class BroadcastWalk {
public:
    BroadcastWalk(const std::vector<std::size_t>& outDims, const std::array<matrix::Dims, 2>& operandDims,
                  std::size_t operands);

    std::size_t offset(std::size_t operand) const noexcept { return offsets_[operand]; }
    void next() noexcept;

private:
    const std::vector<std::size_t>& outDims_;
    std::size_t operands_;
    std::vector<std::size_t> coordinate_;
    std::array<std::vector<std::size_t>, 2> strides_;
    std::array<std::size_t, 2> offsets_{0, 0};
};

// The broadcast dimensions of up to two operands; the variant's acceptance has checked
// that they agree.
std::vector<std::size_t> broadcastDims(const std::array<matrix::Dims, 2>& operandDims, std::size_t operands);

template <class R, class... A, class Element>
Parameter runElementWise(const Element& element, const Parameter* parameters) {
    constexpr std::size_t N = sizeof...(A);
    const auto operands = [&]<std::size_t... I>(std::index_sequence<I...>) {
        return std::tuple<ElementWiseOperand<A>...>(elementWiseOperand<A>(parameters[I])...);
    }(std::make_index_sequence<N>{});
    const bool allScalar = std::apply([](const auto&... o) { return ((o.data == nullptr) && ...); }, operands);
    if (allScalar) {
        return toResultParameter(std::apply([&](const auto&... o) { return element(o.scalar...); }, operands));
    }
    std::array<matrix::Dims, 2> dims{};
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        ((dims[I] = std::get<I>(operands).data ? std::get<I>(operands).dims : matrix::Dims{}), ...);
    }(std::make_index_sequence<N>{});
    const std::vector<std::size_t> outDims = broadcastDims(dims, N);
    matrix::ArrayPtr out(matrix::detail::do_create_uninitnumeric(outDims, classOfValue<R>(),
                                                                 isComplexValue<R>() ? oxCOMPLEX : oxREAL));
    R* result = matrix::getTypedData<R>(out.get());
    const std::size_t count = matrix::getNumberOfElements(out.get());
    BroadcastWalk walk(outDims, dims, N);
    for (std::size_t k = 0; k < count; ++k, walk.next()) {
        result[k] = [&]<std::size_t... I>(std::index_sequence<I...>) {
            const auto at = [&](const auto& operand, std::size_t i) {
                return operand.data ? operand.data[walk.offset(i)] : operand.scalar;
            };
            return element(at(std::get<I>(operands), I)...);
        }(std::make_index_sequence<N>{});
    }
    return Parameter(out.release());
}

} // namespace Velloc::builtin::builtinreg::detail
