#include "CallConversion.hpp"

#include <builtin/builtinreg/ParameterConversion.hpp>
#include <builtin/services/ServiceHandles.hpp>

#include <matrix/oxArrayLayout.hpp>

#include <complex>
#include <type_traits>

namespace Velloc::builtin::detail {

namespace {

template <class T>
bool read(const oxArray* array, Parameter& out) {
    out = *matrix::getTypedData<T>(array);
    return true;
}

// The scalar's value in the alternative of its class; false for classes without one.
bool readScalar(const oxArray* array, oxClassID classId, bool complex, Parameter& out) {
    if (complex) {
        switch (classId) {
        case oxDOUBLE_CLASS: return read<std::complex<double>>(array, out);
        case oxSINGLE_CLASS: return read<std::complex<float>>(array, out);
        default: return false;
        }
    }
    switch (classId) {
    case oxDOUBLE_CLASS: return read<double>(array, out);
    case oxSINGLE_CLASS: return read<float>(array, out);
    case oxLOGICAL_CLASS: return read<bool>(array, out);
    case oxINT8_CLASS: return read<signed char>(array, out);
    case oxUINT8_CLASS: return read<unsigned char>(array, out);
    case oxINT16_CLASS: return read<short>(array, out);
    case oxUINT16_CLASS: return read<unsigned short>(array, out);
    case oxINT32_CLASS: return read<int>(array, out);
    case oxUINT32_CLASS: return read<unsigned int>(array, out);
    case oxINT64_CLASS: return read<long>(array, out);
    case oxUINT64_CLASS: return read<unsigned long>(array, out);
    default: return false;
    }
}

} // namespace

Parameter toParameter(const VariantSignature& call, std::size_t position, const types::ArgType& declared) {
    oxArray* array = call.getArray(position);
    if (array != nullptr) {
        if (const auto* scalar = std::get_if<types::NumericScalarTypes>(&declared)) {
            Parameter value;
            const types::InputKey key = call.getInputKey(position);
            if (key.isFullScalar() && key.isComplex() == scalar->isComplex() &&
                readScalar(array, key.classId(), key.isComplex(), value)) {
                return value;
            }
        } else if (std::holds_alternative<types::LxeObjectTypes>(declared)) {
            if (const auto& service = builtinreg::getOCOSRegWrapper()) {
                if (lxe::LxeObject* object = service->oxArrayToLxeObject(array)) {
                    return Parameter(object);
                }
            }
        }
        matrix::detail::holdForCall(*array);
        matrix::detail::clearTemporaryMark(*array);
    }
    return Parameter(array);
}

void releaseParameter(const Parameter& parameter) {
    if (oxArray* const* array = boost::get<oxArray*>(&parameter); array != nullptr && *array != nullptr) {
        matrix::detail::releaseAfterCall(**array);
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
