#include <builtin/builtinreg/ParameterConversion.hpp>

#include <builtin/services/ServiceHandles.hpp>
#include <builtin/services/findService.hpp>

#include <array>
#include <cstring>

namespace Velloc::builtin::builtinreg::detail {

namespace {

constexpr std::array<std::size_t, 2> SCALAR_EXTENT{1, 1};

template <class T>
oxArray* createScalarOf(oxArray** out, T value, oxClassID classId, oxComplexity complexity) {
    oxArray* array = matrix::detail::do_create_uninitnumeric(SCALAR_EXTENT, classId, complexity);
    std::memcpy(matrix::getData(array), &value, sizeof(T));
    *out = array;
    return array;
}

} // namespace

oxArray* parameterConversionImpl(oxArray** out, double value) { return createScalarOf(out, value, oxDOUBLE_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, float value) { return createScalarOf(out, value, oxSINGLE_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, bool value) { return createScalarOf(out, value, oxLOGICAL_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, signed char value) { return createScalarOf(out, value, oxINT8_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, short value) { return createScalarOf(out, value, oxINT16_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, int value) { return createScalarOf(out, value, oxINT32_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, long value) { return createScalarOf(out, value, oxINT64_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, unsigned char value) { return createScalarOf(out, value, oxUINT8_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, unsigned short value) { return createScalarOf(out, value, oxUINT16_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, unsigned int value) { return createScalarOf(out, value, oxUINT32_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, unsigned long value) { return createScalarOf(out, value, oxUINT64_CLASS, oxREAL); }
oxArray* parameterConversionImpl(oxArray** out, char16_t value) { return createScalarOf(out, value, oxCHAR_CLASS, oxREAL); }
// Complex data is interleaved: real then imaginary part in the first element.
oxArray* parameterConversionImpl(oxArray** out, std::complex<float> value) { return createScalarOf(out, value, oxSINGLE_CLASS, oxCOMPLEX); }
oxArray* parameterConversionImpl(oxArray** out, std::complex<double> value) { return createScalarOf(out, value, oxDOUBLE_CLASS, oxCOMPLEX); }

oxArray* parameterConversionImpl(oxArray** out, Velloc::lxe::LxeObject* object) {
    loadBuiltinServices();
    const auto& service = getOCOSRegWrapper();
    *out = object == nullptr || !service ? nullptr : service->lxeObjectToOxArray(object, nullptr);
    return *out;
}

oxArray* parameterConversionImpl(oxArray** out, Velloc::String::String* text) {
    loadBuiltinServices();
    const auto& service = getStringSupport();
    *out = text == nullptr || !service ? nullptr : service->stringToOxArray(text, nullptr);
    return *out;
}

} // namespace Velloc::builtin::builtinreg::detail
