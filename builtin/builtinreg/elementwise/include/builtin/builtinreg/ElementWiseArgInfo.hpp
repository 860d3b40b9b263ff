// One operand of an element-wise call of element type T: a host array of T's class, or a
// scalar that travels as its value. A scalar has one element and the shared 1x1 dims,
// so the loops treat both alike.
#pragma once

#include <builtin/Parameter.hpp>
#include <builtin/builtinreg/ElementWiseRules.hpp>
#include <builtin/builtinreg/ParameterAccess.hpp>

#include <matrix/oxArray.hpp>

#include <boost/variant/get.hpp>

#include <cstddef>
#include <typeinfo>

namespace Velloc::builtin::builtinreg::detail {

template <class T>
struct ElementWiseArgInfo {
    // Null for a scalar that travels as its value.
    oxArray* array = nullptr;
    T scalar{};
    std::size_t count = 1;
    std::size_t ndims = 2;
    const std::size_t* dims = getScalarDims()->data();

    // Stays valid as long as this object and the array do.
    const T* data() const noexcept { return array != nullptr ? matrix::getTypedData<T>(array) : &scalar; }
    bool isArray() const noexcept { return array != nullptr; }
};

// A parameter holding a T, or a host array of T's class and complexity. terminate asks for
// the fatal assertion instead of the exception when the parameter holds anything else.
template <class T>
ElementWiseArgInfo<T> elementWiseArgInfo(const Parameter& parameter, bool terminate = false) {
    ElementWiseArgInfo<T> info;
    if (const T* value = boost::get<T>(&parameter)) {
        info.scalar = *value;
        return info;
    }
    oxArray* const* array = boost::get<oxArray*>(&parameter);
    if (array == nullptr || *array == nullptr) {
        assertOrThrowWrongElementWiseArg(typeid(T), types::detail::heldType(parameter), terminate);
        return info;
    }
    if (matrix::getClassID(*array) != classOfValue<T>() || matrix::isComplex(*array) != isComplexValue<T>() ||
        matrix::isSparse(*array) || !matrix::isOrdinaryStorage(*array)) {
        types::detail::assertFromParameterType(typeid(T), *array);
    }
    const matrix::Dims dims = matrix::getDimensions(*array);
    info.array = *array;
    info.count = matrix::getNumberOfElements(*array);
    info.ndims = dims.size();
    info.dims = dims.data();
    return info;
}

} // namespace Velloc::builtin::builtinreg::detail
