// Lists of C++ element types, and the variants a maker gives for each: the sample's
// element-wise builtins are written once as templates over the element type and
// instantiated for every class they take.
//
//     variantsFor(ArithmeticTypes{}, [](auto* t) { return makeVariants<&minusOf<Of<decltype(t)>>>("minus", ...); })
#pragma once

#include <builtin/BuiltinVariant.hpp>

#include <complex>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace samplelib {

template <class... T>
struct Types {};

// The twelve numeric element types: ten real classes and complex double and single.
using ArithmeticTypes = Types<double, float, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t,
                              std::uint32_t, std::int64_t, std::uint64_t, std::complex<double>, std::complex<float>>;

// The eight integer classes, and the floating-point ones, real and complex: the classes
// without and with NaN.
using IntegerTypes = Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
                           std::int64_t, std::uint64_t>;
using FloatingTypes = Types<double, float, std::complex<double>, std::complex<float>>;

// The element-wise variants that make(static_cast<T*>(nullptr)) gives for each type T of the list.
template <class... T, class Make>
std::vector<Velloc::builtin::BuiltinVariant> variantsFor(Types<T...>, Make make) {
    std::vector<Velloc::builtin::BuiltinVariant> all;
    const auto append = [&](std::vector<Velloc::builtin::BuiltinVariant> variants) {
        all.insert(all.end(), variants.begin(), variants.end());
    };
    (append(make(static_cast<T*>(nullptr))), ...);
    return all;
}

// The element type a maker's argument points to.
template <class T>
using Of = std::remove_pointer_t<T>;

} // namespace samplelib
