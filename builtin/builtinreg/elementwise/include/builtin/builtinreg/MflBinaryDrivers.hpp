// The broadcasting binary loop driver compiled into the library once per element type,
// over a functor that calls the developer's function through its engine descriptor.
#pragma once

#include <builtin/builtinreg/ElementTypes.hpp>
#include <builtin/builtinreg/MflFunctor.hpp>

#include <cstddef>
#include <tuple>

namespace Velloc::builtin::builtinreg::detail {

// The arguments of mfl_binary::binaryOpDispatch: the data of A, B and the output, then
// for each of them its element count, number of dims and dims, then the functor.
template <class T>
using BinaryDriver = void (*)(const T* a, const T* b, T* out, std::size_t countA, std::size_t ndimsA,
                              const std::size_t* dimsA, std::size_t countB, std::size_t ndimsB,
                              const std::size_t* dimsB, std::size_t countOut, std::size_t ndimsOut,
                              const std::size_t* dimsOut, const MflFunctor<T, T, T>& f);

template <class List>
struct BinaryDriverTable;

template <class... T>
struct BinaryDriverTable<TypeList<T...>> {
    using type = std::tuple<BinaryDriver<T>...>;
};

extern const BinaryDriverTable<ElementTypes>::type mflBinaryDrivers;

template <class T>
BinaryDriver<T> binaryDriver() noexcept {
    return std::get<BinaryDriver<T>>(mflBinaryDrivers);
}

} // namespace Velloc::builtin::builtinreg::detail
