#include "CallConversion.hpp"

#include <builtin/builtinreg/ParameterConversion.hpp>
#include <builtin/services/ServiceHandles.hpp>

#include <complex>
#include <optional>
#include <type_traits>

namespace Velloc::builtin::detail {

namespace {

template <class T>
Parameter valueOf(const oxArray* array) {
    return Parameter(*matrix::getTypedData<T>(array));
}

template <class T>
Parameter complexValueOf(const oxArray* array) {
    return Parameter(*matrix::getTypedData<std::complex<T>>(array));
}

// The scalar's value in the alternative of its class; nullopt for classes without one.
std::optional<Parameter> scalarValue(const oxArray* array, oxClassID classId) {
    if (matrix::isComplex(array)) {
        switch (classId) {
        case oxDOUBLE_CLASS: return complexValueOf<double>(array);
        case oxSINGLE_CLASS: return complexValueOf<float>(array);
        default: return std::nullopt;
        }
    }
    switch (classId) {
    case oxDOUBLE_CLASS: return valueOf<double>(array);
    case oxSINGLE_CLASS: return valueOf<float>(array);
    case oxLOGICAL_CLASS: return valueOf<bool>(array);
    case oxINT8_CLASS: return valueOf<signed char>(array);
    case oxUINT8_CLASS: return valueOf<unsigned char>(array);
    case oxINT16_CLASS: return valueOf<short>(array);
    case oxUINT16_CLASS: return valueOf<unsigned short>(array);
    case oxINT32_CLASS: return valueOf<int>(array);
    case oxUINT32_CLASS: return valueOf<unsigned int>(array);
    case oxINT64_CLASS: return valueOf<long>(array);
    case oxUINT64_CLASS: return valueOf<unsigned long>(array);
    default: return std::nullopt;
    }
}

bool isFullScalar(const types::ArgType& argument) {
    const auto* array = std::get_if<types::OxArrayTypes>(&argument);
    return array != nullptr && array->getShape().first == types::OxArrayTypes::Shape::SCALAR &&
           array->getDensity() == types::OxArrayTypes::Density::FULL;
}

} // namespace

Parameter toParameter(const VariantSignature& call, std::size_t position, const types::ArgType& declared) {
    oxArray* array = call.getArray(position);
    if (array != nullptr) {
        if (const auto* scalar = std::get_if<types::NumericScalarTypes>(&declared)) {
            if (isFullScalar(call.getArgType(position)) && matrix::isComplex(array) == scalar->isComplex()) {
                if (auto value = scalarValue(array, matrix::getClassID(array))) {
                    return *value;
                }
            }
        } else if (std::holds_alternative<types::LxeObjectTypes>(declared)) {
            if (const auto& service = builtinreg::getOCOSRegWrapper()) {
                if (lxe::LxeObject* object = service->oxArrayToLxeObject(array)) {
                    return Parameter(object);
                }
            }
        }
        matrix::addReference(array);
        matrix::clearTemporary(array);
    }
    return Parameter(array);
}

void releaseParameter(const Parameter& parameter) {
    if (oxArray* const* array = boost::get<oxArray*>(&parameter)) {
        matrix::destroyArray(*array);
    }
}

oxArray* toOxArray(const Parameter& result) {
    return boost::apply_visitor(
        [](auto value) -> oxArray* {
            if constexpr (std::is_same_v<decltype(value), oxArray*>) {
                return value;
            } else {
                oxArray* out = nullptr;
                return builtinreg::detail::parameterConversionImpl(&out, value);
            }
        },
        static_cast<const ParameterBase&>(result));
}

} // namespace Velloc::builtin::detail
