// Reading the C++ arguments of a developer function out of the parameters invoke or the
// engine passes, and turning its result into a parameter. Compiled into each defining
// library by the entries that MakeVariant generates.
#pragma once

#include <builtin/Parameter.hpp>
#include <builtin/builtinreg/ParameterConversion.hpp>
#include <builtin/builtinreg/StringTraits.hpp>

#include <foundation/core/except/Exception.hpp>

#include <lxe/LxeObject.hpp>

#include <boost/variant/get.hpp>

#include <complex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

namespace Velloc::builtin::builtinreg {

namespace errors {
struct notScalar {
    static constexpr std::string_view component = "builtin2";
    static constexpr std::string_view key = "notScalar";
    static constexpr std::string_view text = "Expected a scalar argument, but it has {0} elements.";
};
} // namespace errors

using NotScalarError = foundation::core::except::Exception<errors::notScalar, std::invalid_argument>;

} // namespace Velloc::builtin::builtinreg

namespace Velloc::builtin::builtinreg::detail {

template <class T>
inline constexpr bool isParameterValue =
    std::is_same_v<T, unsigned long> || std::is_same_v<T, double> || std::is_same_v<T, float> ||
    std::is_same_v<T, bool> || std::is_same_v<T, signed char> || std::is_same_v<T, short> ||
    std::is_same_v<T, int> || std::is_same_v<T, long> || std::is_same_v<T, unsigned char> ||
    std::is_same_v<T, unsigned short> || std::is_same_v<T, unsigned int> ||
    std::is_same_v<T, std::complex<double>> || std::is_same_v<T, std::complex<float>>;

template <class T>
inline constexpr bool isText =
    std::is_same_v<T, std::u16string> || std::is_same_v<T, std::u16string_view> || std::is_same_v<T, std::string>;

// A pointer to an engine object, of any class derived from LxeObject.
template <class T>
inline constexpr bool isLxeObjectPointer =
    std::is_pointer_v<T> && std::is_base_of_v<Velloc::lxe::LxeObject, std::remove_cv_t<std::remove_pointer_t<T>>>;

template <class T>
constexpr oxClassID classOfValue() {
    using Real = std::conditional_t<std::is_same_v<T, std::complex<double>>, double,
                                    std::conditional_t<std::is_same_v<T, std::complex<float>>, float, T>>;
    if constexpr (std::is_same_v<Real, double>) return oxDOUBLE_CLASS;
    else if constexpr (std::is_same_v<Real, float>) return oxSINGLE_CLASS;
    else if constexpr (std::is_same_v<Real, bool>) return oxLOGICAL_CLASS;
    else if constexpr (std::is_same_v<Real, char16_t>) return oxCHAR_CLASS;
    else if constexpr (std::is_same_v<Real, signed char>) return oxINT8_CLASS;
    else if constexpr (std::is_same_v<Real, unsigned char>) return oxUINT8_CLASS;
    else if constexpr (std::is_same_v<Real, short>) return oxINT16_CLASS;
    else if constexpr (std::is_same_v<Real, unsigned short>) return oxUINT16_CLASS;
    else if constexpr (std::is_same_v<Real, int>) return oxINT32_CLASS;
    else if constexpr (std::is_same_v<Real, unsigned int>) return oxUINT32_CLASS;
    else if constexpr (std::is_same_v<Real, long>) return oxINT64_CLASS;
    else return oxUINT64_CLASS;
}

template <class T>
constexpr bool isComplexValue() {
    return std::is_same_v<T, std::complex<double>> || std::is_same_v<T, std::complex<float>>;
}

// A scalar read out of a host array of exactly its class and complexity. A declaration
// that admitted another class is a defect; an array of another size is the caller's.
template <class T>
T scalarFromArray(const oxArray* array) {
    if (array == nullptr || matrix::getClassID(array) != classOfValue<T>() ||
        matrix::isComplex(array) != isComplexValue<T>() || matrix::isSparse(array)) {
        types::detail::assertFromParameterType(typeid(T), array);
    }
    if (const std::size_t count = matrix::getNumberOfElements(array); count != 1) {
        throw NotScalarError({static_cast<long>(count)});
    }
    return *matrix::getTypedData<T>(array);
}

template <class T>
T fromParameter(const Parameter& parameter, types::Temporaries& temporaries) {
    if constexpr (isParameterValue<T>) {
        if (const T* value = boost::get<T>(&parameter)) {
            return *value;
        }
        if (oxArray* const* array = boost::get<oxArray*>(&parameter)) {
            return scalarFromArray<T>(*array);
        }
        types::detail::assertParameterContainsType(typeid(T), parameter);
        return T{};
    } else if constexpr (std::is_same_v<T, char16_t>) {
        oxArray* const* array = boost::get<oxArray*>(&parameter);
        if (array == nullptr) {
            types::detail::assertParameterContainsType(typeid(oxArray*), parameter);
            return T{};
        }
        return scalarFromArray<T>(*array);
    } else if constexpr (std::is_same_v<T, oxArray*> || std::is_same_v<T, const oxArray*>) {
        if (oxArray* const* array = boost::get<oxArray*>(&parameter)) {
            return *array;
        }
        types::detail::assertParameterContainsType(typeid(oxArray*), parameter);
        return nullptr;
    } else if constexpr (isText<T>) {
        oxArray* const* array = boost::get<oxArray*>(&parameter);
        if (array == nullptr || *array == nullptr) {
            types::detail::assertParameterContainsType(typeid(oxArray*), parameter);
            return T{};
        }
        // The reader takes over one reference, which temporaries gives back after the call.
        return types::TypeTraitsImpl<T>{}(matrix::addReference(*array), temporaries);
    } else if constexpr (std::is_same_v<T, Velloc::lxe::LxeObject*> ||
                         std::is_same_v<T, const Velloc::lxe::LxeObject*>) {
        return lxeObjectOfParameter(parameter);
    } else if constexpr (requires { types::TypeTraitsImpl<T>::fromParameter(parameter); }) {
        // Pointers to engine-object classes (builtin/lxeobject/LxeObjectTypeTraitsImpl.hpp).
        return types::TypeTraitsImpl<T>::fromParameter(parameter);
    } else if constexpr (std::is_same_v<T, Velloc::String::String*>) {
        if (Velloc::String::String* const* text = boost::get<Velloc::String::String*>(&parameter)) {
            return *text;
        }
        types::detail::assertParameterContainsType(typeid(T), parameter);
        return nullptr;
    } else if constexpr (isLxeObjectPointer<T>) {
        static_assert(sizeof(T) == 0, "an engine-object parameter points to a class derived from "
                                      "lxeobject::CppLxeObjectImpl<Class> with a static LxeObjectId lxeObjectId");
    } else {
        static_assert(sizeof(T) == 0, "no conversion from a Parameter to this parameter type");
    }
}

// The result of a developer function as one parameter. Text and char16_t results become
// host arrays here, since no alternative holds them.
template <class R>
Parameter toResultParameter(R&& result) {
    using T = std::remove_cvref_t<R>;
    if constexpr (isParameterValue<T> || std::is_same_v<T, oxArray*> || std::is_same_v<T, Velloc::lxe::LxeObject*> ||
                  std::is_same_v<T, Velloc::String::String*>) {
        return Parameter(result);
    } else if constexpr (isLxeObjectPointer<T>) {
        // A new object may come back without references: the result's array takes the first.
        return Parameter(const_cast<Velloc::lxe::LxeObject*>(static_cast<const Velloc::lxe::LxeObject*>(result)));
    } else if constexpr (std::is_same_v<T, char16_t>) {
        oxArray* out = nullptr;
        return Parameter(parameterConversionImpl(&out, result));
    } else if constexpr (isText<T>) {
        return Parameter(types::TypeTraitsImpl<T>{}(std::forward<R>(result)));
    } else {
        static_assert(sizeof(T) == 0, "no conversion from this result type to a Parameter");
    }
}

} // namespace Velloc::builtin::builtinreg::detail
