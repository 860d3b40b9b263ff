// What a C++ parameter or result type stands for as an argument type. Each
// specialisation provides either
//   static const ArgType& getArgType();                  one argument type, or
//   static ArgType-or-reference getArgType(size_t kind)  one of numArgTypes kinds, with
//   static constexpr unsigned long numArgTypes;
// Further kinds of values (strings, engine objects) add their own specialisations.
#pragma once

#include <builtin/types/ArgType.hpp>
#include <lxe/LxeObjectFwd.hpp>
#include <matrix/oxArray.hpp>

#include <complex>
#include <cstddef>
#include <cstdint>

namespace Velloc::builtin::types {

// A type the framework cannot describe: a variant using it is removed from every list,
// and makeVariants refuses to compile a developer function that uses it.
template <class T>
struct TypeTraitsImpl {
    using Undescribed = void;
    static const ArgType& getArgType() {
        static const ArgType type = UnsupportedArgType{};
        return type;
    }
};

namespace detail {

template <oxClassID Element,
          NumericScalarTypes::Complexity Complexity = NumericScalarTypes::Complexity::NOT_COMPLEX>
struct NumericScalarTypeTraits {
    static const ArgType& getArgType() {
        static const ArgType type = NumericScalarTypes(Element, Complexity);
        return type;
    }
};

// A host array handle takes any array; the declaration's tolerance is relaxed so that
// it accepts every run-time value.
struct OpenArrayTypeTraits {
    static const ArgType& getArgType() {
        static const ArgType type = [] {
            OxArrayTypes open = OxArrayTypes::fullyOpen();
            open.setSignatureTolerance(SignatureTolerance::RELAXED);
            return open;
        }();
        return type;
    }
};

// Any engine object: as compiled callers pass it, and as the 1-by-1 array of any class
// in which interpreted calls pass it, whose object the conversion then looks for.
struct AnyLxeObjectTypeTraits {
    static constexpr unsigned long numArgTypes = 2;
    static const ArgType& getArgType(std::size_t kind) {
        static const ArgType object = LxeObjectTypes(oxUNKNOWN_CLASS, LxeObjectTypes::ANY_VARIANT_ID, false);
        static const ArgType array = [] {
            OxArrayTypes scalar(oxUNKNOWN_CLASS, OxArrayTypes::Shape::SCALAR, OxArrayTypes::Density::FULL,
                                OxArrayTypes::Complexity::NOT_COMPLEX, 0);
            scalar.setSignatureTolerance(SignatureTolerance::RELAXED);
            return scalar;
        }();
        return kind == 0 ? object : array;
    }
};

} // namespace detail

template <> struct TypeTraitsImpl<Velloc::lxe::LxeObject*> : detail::AnyLxeObjectTypeTraits {};
template <> struct TypeTraitsImpl<const Velloc::lxe::LxeObject*> : detail::AnyLxeObjectTypeTraits {};
template <> struct TypeTraitsImpl<bool> : detail::NumericScalarTypeTraits<oxLOGICAL_CLASS> {};
template <> struct TypeTraitsImpl<char16_t> : detail::NumericScalarTypeTraits<oxCHAR_CLASS> {};
template <> struct TypeTraitsImpl<double> : detail::NumericScalarTypeTraits<oxDOUBLE_CLASS> {};
template <> struct TypeTraitsImpl<float> : detail::NumericScalarTypeTraits<oxSINGLE_CLASS> {};
template <> struct TypeTraitsImpl<std::int8_t> : detail::NumericScalarTypeTraits<oxINT8_CLASS> {};
template <> struct TypeTraitsImpl<std::uint8_t> : detail::NumericScalarTypeTraits<oxUINT8_CLASS> {};
template <> struct TypeTraitsImpl<std::int16_t> : detail::NumericScalarTypeTraits<oxINT16_CLASS> {};
template <> struct TypeTraitsImpl<std::uint16_t> : detail::NumericScalarTypeTraits<oxUINT16_CLASS> {};
template <> struct TypeTraitsImpl<std::int32_t> : detail::NumericScalarTypeTraits<oxINT32_CLASS> {};
template <> struct TypeTraitsImpl<std::uint32_t> : detail::NumericScalarTypeTraits<oxUINT32_CLASS> {};
template <> struct TypeTraitsImpl<std::int64_t> : detail::NumericScalarTypeTraits<oxINT64_CLASS> {};
template <> struct TypeTraitsImpl<std::uint64_t> : detail::NumericScalarTypeTraits<oxUINT64_CLASS> {};
template <>
struct TypeTraitsImpl<std::complex<double>>
    : detail::NumericScalarTypeTraits<oxDOUBLE_CLASS, NumericScalarTypes::Complexity::COMPLEX> {};
template <>
struct TypeTraitsImpl<std::complex<float>>
    : detail::NumericScalarTypeTraits<oxSINGLE_CLASS, NumericScalarTypes::Complexity::COMPLEX> {};
template <> struct TypeTraitsImpl<oxArray*> : detail::OpenArrayTypeTraits {};
template <> struct TypeTraitsImpl<const oxArray*> : detail::OpenArrayTypeTraits {};

} // namespace Velloc::builtin::types
